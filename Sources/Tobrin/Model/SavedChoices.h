/// What the user has chosen, from one run of the program to the next: settings, comforts and the
/// pack. Read at the start; a change is saved once it is 0.3 s old, and at the end. A preview has
/// the defaults and saves nothing. Thread: main.
#pragma once

#include <optional>
#include <string>

#include "Base/SerialQueue.h"
#include "Engine/EngineSettings.h"
#include "Engine/SettingsStore.h"
#include "Model/Comforts.h"
#include "Model/OutputMemory.h"
#include "Model/SettingsSaver.h"

namespace tobrin {

class SavedChoices final {
 public:
  static constexpr const char* settingsKey = "engineSettings";
  static constexpr const char* comfortsKey = "comforts";
  static constexpr const char* selectedPackKey = "selectedPack";

  /// `store` and `main` outlive this object.
  SavedChoices(SettingsStore& store, SerialQueue& main, bool isPreview);

  /// Whether this user has never run the program before.
  [[nodiscard]] bool isFirstStart() const { return isFirstStart_; }

  [[nodiscard]] const EngineSettings& settings() const { return settings_; }
  void setSettings(const EngineSettings& settings);
  [[nodiscard]] const Comforts& comforts() const { return comforts_; }
  void setComforts(const Comforts& comforts);
  /// Where it sounds and how loud there, a part of the comforts.
  [[nodiscard]] OutputMemory& outputs() { return comforts_.outputs; }
  void saveOutputs() { saveSoon(comfortsSaver_); }
  /// The pack that was chosen when the program last ended; absent: none was.
  [[nodiscard]] const std::optional<std::string>& packID() const { return packID_; }
  /// Saved at once.
  void setPackID(const std::string& id);

  /// Saves now what is not saved yet.
  void save();

 private:
  void read();
  void readSettings(const std::string& json);
  void saveSoon(SettingsSaver& saver);

  SettingsStore& store_;
  const bool isPreview_;
  bool isFirstStart_ = false;
  EngineSettings settings_;
  Comforts comforts_;
  std::optional<std::string> packID_;
  SettingsSaver settingsSaver_;
  SettingsSaver comfortsSaver_;
};

}  // namespace tobrin
