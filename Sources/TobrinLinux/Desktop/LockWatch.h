/// Whether the screen is locked, by the login manager's hint on the session or by the desktop's
/// screen saver. Without their buses it is never locked and costs nothing. The owner watches
/// `descriptor` and calls `process`. Thread: main.
#pragma once

#include <functional>
#include <memory>

namespace tobrin {

class LockWatch final {
 public:
  /// `onChange` is called from `process`.
  explicit LockWatch(std::function<void(bool isLocked)> onChange);
  ~LockWatch();
  LockWatch(const LockWatch&) = delete;
  LockWatch& operator=(const LockWatch&) = delete;

  /// To be watched for readability; -1 where there is nothing to watch.
  [[nodiscard]] int descriptor() const;

  [[nodiscard]] bool isLocked() const;

  /// Takes the messages that have arrived.
  void process();

 private:
  struct Buses;
  std::unique_ptr<Buses> buses_;
};

}  // namespace tobrin
