/// The sentences that say what state the program is in, in English or in another language.
/// Thread: any.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "Input/GlobalHotkey.h"
#include "Input/PlatformWords.h"
#include "Model/SoundState.h"

namespace tobrin {

/// What the sentences are about.
struct ProgramStatus {
  SoundState sound = SoundState::playing;
  bool isMasked = false;  ///< strokes get the sounds of other keys
  /// Where it is quiet for the application in front: its name, empty for one that is not to be
  /// named; absent where it is quiet for any that fills the screen.
  std::optional<std::string> quietApp = std::nullopt;
  std::optional<std::string> packName;  ///< absent: no pack
  bool forceSensing = false;            ///< wanted, and a sensor is there
  bool sensorWorks = true;
};

class StatusTexts final {
 public:
  /// From an English text of ours to the user's language.
  using Translate = std::function<std::string(std::string_view english)>;

  /// `words` outlives the texts. The terminal and the log speak English.
  explicit StatusTexts(const PlatformWords& words, Translate translate = inEnglish)
      : words_(words), translate_(std::move(translate)) {}

  [[nodiscard]] std::string statusLine(const ProgramStatus& status) const;

  /// Nothing while the shortcut is active or off. `shortcut` is its name for people.
  [[nodiscard]] std::optional<std::string> shortcutProblem(const GlobalHotkey::Status& status,
                                                           const std::string& shortcut) const;

  [[nodiscard]] std::string shortcutHint(const std::string& shortcut, ShortcutRoute route) const;

 private:
  static std::string inEnglish(std::string_view english) { return std::string(english); }

  const PlatformWords& words_;
  Translate translate_;
};

}  // namespace tobrin
