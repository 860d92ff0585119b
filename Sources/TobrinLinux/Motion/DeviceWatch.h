/// Says when a device of one subsystem of the kernel comes or changes. Uses udev's events where
/// udev runs, so that the device's permissions are set when the news arrives. Thread: the one that
/// waits.
#pragma once

#include <memory>

struct udev;
struct udev_monitor;

namespace tobrin {

class WakeEvent;

class DeviceWatch final {
 public:
  explicit DeviceWatch(const char* subsystem);
  ~DeviceWatch();
  DeviceWatch(const DeviceWatch&) = delete;
  DeviceWatch& operator=(const DeviceWatch&) = delete;

  /// Waits for news since the last call; false where `interrupt` was raised instead. Never wakes up
  /// in between.
  [[nodiscard]] bool wait(const WakeEvent& interrupt);

  /// Readable when there is news, for a wait on other things as well; -1 where none ever comes.
  [[nodiscard]] int fd() const;
  /// Takes the news off `fd`; the next `wait` returns at once where there was any.
  void note();

 private:
  struct Release {
    void operator()(udev* context) const;
    void operator()(udev_monitor* monitor) const;
  };
  std::unique_ptr<udev, Release> context_;
  std::unique_ptr<udev_monitor, Release> monitor_;  // null: no news ever comes
  bool noted_ = false;
};

}  // namespace tobrin
