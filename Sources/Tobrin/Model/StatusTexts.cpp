#include "Model/StatusTexts.h"

#include "Model/FilledText.h"

namespace tobrin {
std::string StatusTexts::statusLine(const ProgramStatus& status) const {
  switch (status.sound) {
    case SoundState::noKeyAccess:
      return translate_(words_.needsKeyAccess);
    case SoundState::noSound:
      return translate_("No sound");
    case SoundState::packBroken:
      if (status.packName) return filled(translate_("%1 can't be played"), *status.packName);
      break;
    case SoundState::off:
      return translate_("Off");
    case SoundState::pausedInBackground:
      return translate_("Paused while another session is in front");
    case SoundState::pausedWhileLocked:
      return translate_("Paused while the screen is locked");
    case SoundState::recording:
      return translate_("Recording your keyboard");
    case SoundState::pausedForCall:
      return translate_("Paused while the mic is in use");
    case SoundState::quietForApp:
      if (!status.quietApp) return translate_("Quiet in full screen");
      if (status.quietApp->empty()) return translate_("Quiet in this app");
      return filled(translate_("Quiet in %1"), *status.quietApp);
    case SoundState::muted:
      return translate_("Muted");
    case SoundState::playing:
      if (status.isMasked) return translate_("Masked while the sound is recorded");
      break;
  }
  const std::string strength = !status.forceSensing ? translate_("Fixed strength")
                               : status.sensorWorks ? translate_("Force sensing on")
                                                    : translate_("Fixed strength, sensor fails");
  return status.packName.value_or(translate_("No pack")) + " · " + strength;
}

std::optional<std::string> StatusTexts::shortcutProblem(const GlobalHotkey::Status& status,
                                                        const std::string& shortcut) const {
  using Kind = GlobalHotkey::Status::Kind;
  switch (status.kind) {
    case Kind::active:
    case Kind::off:
      return std::nullopt;
    case Kind::taken:
      return filled(translate_("%1 is already used by another app. Pick another."), shortcut);
    case Kind::reservedBySystem:
      return shortcut + translate_(words_.reservedShortcut);
    case Kind::failed:
      return filled(filled(translate_("Couldn't set up %1 (error %2)."), shortcut),
                    std::to_string(status.error), "%2");
  }
  return std::nullopt;
}

std::string StatusTexts::shortcutHint(const std::string& shortcut, ShortcutRoute route) const {
  std::string hint = filled(translate_("%1 in any app to turn sounds on or off"), shortcut);
  switch (route) {
    case ShortcutRoute::exclusive:
      break;
    case ShortcutRoute::desktop:
      return hint + translate_(". The desktop's settings can change the keys.");
    case ShortcutRoute::shared:
      return hint + translate_(". Other apps see these keys too.");
  }
  return hint;
}

}  // namespace tobrin
