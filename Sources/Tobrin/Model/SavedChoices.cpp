#include "Model/SavedChoices.h"

#include <exception>

#include "Base/Log.h"

namespace tobrin {

SavedChoices::SavedChoices(SettingsStore& store, SerialQueue& main, bool isPreview)
    : store_(store),
      isPreview_(isPreview),
      settingsSaver_(main, [this] { return store_.write(settingsKey, settings_.toJson()); }),
      comfortsSaver_(main, [this] { return store_.write(comfortsKey, comforts_.toJson()); }) {
  if (!isPreview_) read();
}

void SavedChoices::read() {
  const auto settings = store_.read(settingsKey);
  if (settings) readSettings(*settings);
  if (const auto comforts = store_.read(comfortsKey)) comforts_ = Comforts::fromJson(*comforts);
  packID_ = store_.readText(selectedPackKey);
  isFirstStart_ = !settings && !packID_;
  if (isFirstStart_) saveSoon(settingsSaver_);
}

void SavedChoices::readSettings(const std::string& json) {
  try {
    settings_ = EngineSettings::fromJson(json);
  } catch (const std::exception& error) {
    store_.keepAside(settingsKey);
    logLine(std::string("saved settings can't be read, using the defaults: ") + error.what());
  }
}

void SavedChoices::setSettings(const EngineSettings& settings) {
  settings_ = settings;
  saveSoon(settingsSaver_);
}

void SavedChoices::setComforts(const Comforts& comforts) {
  comforts_ = comforts;
  saveSoon(comfortsSaver_);
}

void SavedChoices::setPackID(const std::string& id) {
  if (!isPreview_) store_.writeText(selectedPackKey, id);
}

void SavedChoices::save() {
  settingsSaver_.save();
  comfortsSaver_.save();
}

void SavedChoices::saveSoon(SettingsSaver& saver) {
  if (!isPreview_) saver.saveSoon();
}

}  // namespace tobrin
