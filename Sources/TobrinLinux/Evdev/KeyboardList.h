/// Which keyboards and mice there are, and a notice when that, or the right to read them, may have
/// changed. Not to be used from two threads at once. Thread: any.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Base/FileDescriptor.h"

struct udev;
struct udev_monitor;

namespace tobrin {

struct UdevDeleter {
  void operator()(udev* context) const;
  void operator()(udev_monitor* monitor) const;
};

class KeyboardList final {
 public:
  KeyboardList();

  /// Whether this system has input devices at all.
  static bool isPossible();

  /// The device nodes of the keyboards of a seat ("seat0"), in order. Keyboards are devices with
  /// all letters or a whole keypad, found without opening them: no mice, power buttons or lid
  /// switches. A remapper's virtual keyboard counts too.
  [[nodiscard]] std::vector<std::string> nodes(std::string_view seat) const;

  /// The same for devices with mouse buttons: mice, touchpads, pointing sticks.
  [[nodiscard]] std::vector<std::string> mice(std::string_view seat) const;

 private:
  template <typename IsWanted>
  std::vector<std::string> nodes(std::string_view seat, IsWanted isWanted) const;

  std::unique_ptr<udev, UdevDeleter> udev_;
};

class KeyboardWatch final {
 public:
  KeyboardWatch();

  /// To poll for reading; -1 where there is no such service.
  [[nodiscard]] int hotplugFd() const;
  [[nodiscard]] int permissionFd() const { return inotify_.get(); }

  /// Takes all notices. Call it before `KeyboardList::nodes`, so that none is missed.
  void clear();

 private:
  std::unique_ptr<udev, UdevDeleter> udev_;
  std::unique_ptr<udev_monitor, UdevDeleter> monitor_;
  FileDescriptor inotify_;
};

/// Whether a device with these keys is a keyboard; `keys` is the kernel's bitmap of them in
/// hexadecimal words, the highest first.
bool isKeyboard(std::string_view keys);

}  // namespace tobrin
