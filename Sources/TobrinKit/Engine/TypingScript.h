/// Key presses with their times, and the script that a person typing a text would leave. Plain
/// values and a pure function: the same text and seed give the same script. Thread: any.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "Base/KeyEvent.h"

namespace tobrin {

struct ScriptedKey {
  double time = 0;  ///< seconds from the start
  uint16_t code = 0;
  KeyAction action = KeyAction::down;
  float position = 0;  ///< tier position, 0 (soft) to 3 (slam)

  bool operator==(const ScriptedKey&) const = default;
};

/// The tier position of the `index`-th of `count` typed characters.
using TypingStrength = std::function<float(std::size_t index, std::size_t count)>;

/// Types UTF-8 text on a US keyboard at `wpm` words a minute (five characters a word, above 0).
/// Letter case does not matter; characters that have no key take no time.
std::vector<ScriptedKey> typingScript(std::string_view text, double wpm, uint64_t seed,
                                      const TypingStrength& strength);

}  // namespace tobrin
