/// Saves settings once they have stopped changing: a slider that is dragged changes them dozens of
/// times a second, and each save waits for the disk. Thread: main.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "Base/SerialQueue.h"

namespace tobrin {

class SettingsSaver final {
 public:
  static constexpr std::chrono::milliseconds restTime{300};

  /// `write` saves the settings as they are then and returns whether it could. `main`, the queue of
  /// the main thread, is borrowed and outlives this object, as does what `write` uses.
  SettingsSaver(SerialQueue& main, std::function<bool()> write);
  /// Saves what is not saved yet.
  ~SettingsSaver() { save(); }
  SettingsSaver(const SettingsSaver&) = delete;
  SettingsSaver& operator=(const SettingsSaver&) = delete;

  /// Saves after `restTime` without another call.
  void saveSoon();
  /// Saves now what is not saved yet; what cannot be saved stays for the next time.
  void save();

 private:
  SerialQueue& main_;
  const std::function<bool()> write_;
  bool unsaved_ = false;
  uint64_t changes_ = 0;
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);  // posted saves watch it
};

}  // namespace tobrin
