/// The sentences in which the program speaks of its own state. Pure functions; thread: any.
#pragma once

#include <optional>
#include <string>

#include "Input/GlobalHotkey.h"
#include "Input/PlatformWords.h"
#include "Model/SoundState.h"

namespace tobrin {

struct StatusTexts {
  struct State {
    SoundState sound = SoundState::playing;
    std::optional<std::string> packName;  ///< absent: no pack
    bool forceSensing = false;            ///< wanted, and a sensor is there
    bool sensorWorks = true;
  };

  static std::string statusLine(const State& state, const PlatformWords& words);

  /// Nothing while the shortcut is active or off. `shortcut` is its name for people.
  static std::optional<std::string> shortcutProblem(const GlobalHotkey::Status& status,
                                                    const std::string& shortcut,
                                                    const PlatformWords& words);

  static std::string shortcutHint(const std::string& shortcut, ShortcutRoute route);
};

}  // namespace tobrin
