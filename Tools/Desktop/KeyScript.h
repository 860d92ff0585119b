/// What a typist does: key actions with their times, made from a text, a random draw or a script.
/// Thread: any.
#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace tobrin::testing {

struct KeyAction {
  double atMs = 0;      // after the start of the script
  uint32_t keysym = 0;  // of the X server's unshifted layout
  bool down = true;
};

struct TypingStyle {
  double intervalMs = 120;  // between presses
  double holdMs = 45;
};

struct RandomTyping {
  int presses = 100;
  double minimumIntervalMs = 90;
  double maximumIntervalMs = 180;
  bool rolls = false;  // hold every key beyond the next press
  uint32_t seed = 1;
};

/// Latin-1 text; capitals take a shift key around them. A line feed is the return key.
[[nodiscard]] std::vector<KeyAction> typedText(const std::string& text, TypingStyle style);

/// Letters and spaces at random intervals, never a key that is still down.
[[nodiscard]] std::vector<KeyAction> randomTyping(const RandomTyping& typing);

/// Lines "MS press|release KEYSYM-NUMBER"; empty ones and those that start with # are skipped.
/// Throws std::runtime_error naming the line that does not parse.
[[nodiscard]] std::vector<KeyAction> parseKeyScript(std::istream& lines);

}  // namespace tobrin::testing
