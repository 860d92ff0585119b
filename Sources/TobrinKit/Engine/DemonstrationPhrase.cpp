#include "Engine/DemonstrationPhrase.h"

#include <algorithm>

namespace tobrin {

std::vector<PhraseKey> demonstrationPhrase(SplitMix64& rng) {
  constexpr uint16_t space = 49;
  // "musical keyboard"
  constexpr uint16_t codes[] = {46, 32, 1, 34, 8, 0, 37, space, 40, 14, 16, 11, 31, 0, 15, 2};
  constexpr PhraseKey::Seconds pauseAfterWord{0.16};
  std::vector<PhraseKey> phrase;
  PhraseKey::Seconds time{0};
  for (const uint16_t code : codes) {
    const auto position = static_cast<float>(std::clamp(1 + 0.8 * rng.signedUnit(), 0.0, 3.0));
    phrase.push_back({time, code, position});
    time += code == space ? pauseAfterWord : PhraseKey::Seconds(0.09 + 0.06 * rng.unit());
  }
  return phrase;
}

}  // namespace tobrin
