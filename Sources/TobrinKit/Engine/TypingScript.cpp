#include "Engine/TypingScript.h"

#include <array>
#include <cassert>
#include <optional>

#include "Base/Key.h"
#include "Base/SplitMix64.h"

namespace tobrin {
namespace {

constexpr double firstKeyTime = 0.15;  // s
constexpr double shortestHold = 0.06;  // s
constexpr double holdSpread = 0.04;    // s
constexpr uint16_t noKey = 0xFFFF;

/// Virtual key codes 0 to 51 by the character each types, in lower case; NUL where there is none.
constexpr std::string_view characters("asdfhgzxcv\0bqweryt123465=97-80]ou[ip\nlj'k;\\,/nm.\t `\b",
                                      52);

constexpr std::array<uint16_t, 128> codesByCharacter() {
  std::array<uint16_t, 128> codes{};
  codes.fill(noKey);
  for (std::size_t code = 0; code < characters.size(); ++code)
    if (characters[code] != '\0')
      codes[static_cast<unsigned char>(characters[code])] = static_cast<uint16_t>(code);
  for (std::size_t letter = 'a'; letter <= 'z'; ++letter)
    codes[letter - 'a' + 'A'] = codes[letter];
  return codes;
}

/// The letters beyond ASCII whose lower case is ASCII.
constexpr std::string_view kelvinSign = "\xE2\x84\xAA";
constexpr std::string_view dottedCapitalI = "\xC4\xB0";

/// The key codes of a text's typable characters.
std::vector<uint16_t> typedCodes(std::string_view text) {
  static constexpr std::array<uint16_t, 128> codes = codesByCharacter();
  std::vector<uint16_t> typed;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    uint16_t code = noKey;
    if (byte < codes.size())
      code = codes[byte];
    else if (text.substr(i).starts_with(kelvinSign))
      code = codes['k'];
    else if (text.substr(i).starts_with(dottedCapitalI))
      code = codes['i'];
    if (code != noKey) typed.push_back(code);
  }
  return typed;
}

}  // namespace

std::vector<ScriptedKey> typingScript(std::string_view text, double wpm, uint64_t seed,
                                      const TypingStrength& strength) {
  assert(wpm > 0 && strength);
  const std::vector<uint16_t> typed = typedCodes(text);
  const double beat = 60 / (wpm * 5);
  SplitMix64 rng(seed);
  std::vector<ScriptedKey> script;
  script.reserve(2 * typed.size());
  double time = firstKeyTime;
  for (std::size_t i = 0; i < typed.size(); ++i) {
    const float position = strength(i, typed.size());
    script.push_back({time, typed[i], KeyAction::down, position});
    const double release = time + shortestHold + holdSpread * rng.unit();
    script.push_back({release, typed[i], KeyAction::up, position});
    double gap = Key{typed[i]} == Key::space ? 0.3 * beat : 0;
    gap += beat * (0.6 + 0.8 * rng.unit());
    time += gap;
  }
  return script;
}

}  // namespace tobrin
