#include "Model/StatusTexts.h"

namespace tobrin {

std::string StatusTexts::statusLine(const State& state, const PlatformWords& words) {
  switch (state.sound) {
    case SoundState::noKeyAccess:
      return std::string(words.needsKeyAccess);
    case SoundState::noSound:
      return "No sound";
    case SoundState::packBroken:
      if (state.packName) return *state.packName + " can't be played";
      break;
    case SoundState::off:
      return "Off";
    case SoundState::pausedForCall:
      return "Paused while the mic is in use";
    case SoundState::muted:
      return "Muted";
    case SoundState::playing:
      break;
  }
  const char* const strength = !state.forceSensing ? "Fixed strength"
                               : state.sensorWorks ? "Force sensing on"
                                                   : "Fixed strength, sensor fails";
  return state.packName.value_or("No pack") + " · " + strength;
}

std::optional<std::string> StatusTexts::shortcutProblem(const GlobalHotkey::Status& status,
                                                        const std::string& shortcut,
                                                        const PlatformWords& words) {
  using Kind = GlobalHotkey::Status::Kind;
  switch (status.kind) {
    case Kind::active:
    case Kind::off:
      return std::nullopt;
    case Kind::taken:
      return shortcut + " is already used by another app. Pick another.";
    case Kind::reservedBySystem:
      return shortcut + std::string(words.reservedShortcut);
    case Kind::failed:
      return "Couldn't set up " + shortcut + " (error " + std::to_string(status.error) + ").";
  }
  return std::nullopt;
}

std::string StatusTexts::shortcutHint(const std::string& shortcut, ShortcutRoute route) {
  const std::string hint = shortcut + " in any app to turn sounds on or off";
  switch (route) {
    case ShortcutRoute::exclusive:
      break;
    case ShortcutRoute::desktop:
      return hint + ". The desktop's settings can change the keys.";
    case ShortcutRoute::shared:
      return hint + ". Other apps see these keys too.";
  }
  return hint;
}

}  // namespace tobrin
