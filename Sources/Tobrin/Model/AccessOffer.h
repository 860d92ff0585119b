/// Offers, until the user says no, to replace an older and wider access to keys. Thread: main.
#pragma once

#include "Engine/DesktopServices.h"
#include "Engine/SettingsStore.h"

namespace tobrin {

class AccessOffer final {
 public:
  static constexpr const char* settingsKey = "keepsWideKeyAccess";

  /// Both are borrowed.
  AccessOffer(Workspace& workspace, SettingsStore& settings)
      : workspace_(workspace), settings_(settings) {}

  [[nodiscard]] bool isOpen() const { return isOpen_; }
  void look() {
    isOpen_ = settings_.read(settingsKey) != "true" && workspace_.canNarrowKeyAccess();
  }
  /// For all time.
  void decline() {
    settings_.write(settingsKey, "true");
    isOpen_ = false;
  }

 private:
  Workspace& workspace_;
  SettingsStore& settings_;
  bool isOpen_ = false;
};

}  // namespace tobrin
