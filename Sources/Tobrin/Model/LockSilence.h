/// The user's wish for silence while the screen is locked, and whether it is. Kept under a key of
/// its own, as it belongs to the program and not to the engine. Thread: main.
#pragma once

#include "Engine/SettingsStore.h"

namespace tobrin {

class LockSilence final {
 public:
  static constexpr const char* settingsKey = "quietWhileLocked";

  /// Takes what was kept; a value that is none is as if there were none.
  void read(const SettingsStore& store) { isWanted_ = store.read(settingsKey) != "false"; }

  void want(bool silence, SettingsStore& store) {
    isWanted_ = silence;
    store.write(settingsKey, silence ? "true" : "false");
  }
  void setLocked(bool isLocked) { isLocked_ = isLocked; }

  [[nodiscard]] bool isWanted() const { return isWanted_; }
  [[nodiscard]] bool isNow() const { return isWanted_ && isLocked_; }

 private:
  bool isWanted_ = true;
  bool isLocked_ = false;
};

}  // namespace tobrin
