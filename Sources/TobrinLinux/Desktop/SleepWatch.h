/// Calls when logind says that the machine has woken from sleep. Without a system bus it never
/// calls and costs nothing. The owner watches `descriptor` and calls `process`. Thread: main.
#pragma once

#include <functional>
#include <memory>

namespace tobrin {

class SleepWatch final {
 public:
  explicit SleepWatch(std::function<void()> onWake);
  ~SleepWatch();
  SleepWatch(const SleepWatch&) = delete;
  SleepWatch& operator=(const SleepWatch&) = delete;

  /// To be watched for readability; -1 where there is no bus.
  [[nodiscard]] int descriptor() const;

  /// Takes the messages that have arrived. False once the bus is gone: stop watching.
  bool process();

 private:
  struct Bus;
  std::unique_ptr<Bus> bus_;
};

}  // namespace tobrin
