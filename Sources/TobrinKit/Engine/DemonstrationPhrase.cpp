#include "Engine/DemonstrationPhrase.h"

#include <algorithm>

#include "Base/Key.h"

namespace tobrin {

std::vector<PhraseKey> demonstrationPhrase(SplitMix64& rng) {
  constexpr Key keys[] = {Key::m, Key::u, Key::s, Key::i, Key::c, Key::a, Key::l, Key::space,
                          Key::k, Key::e, Key::y, Key::b, Key::o, Key::a, Key::r, Key::d};
  constexpr PhraseKey::Seconds pauseAfterWord{0.16};
  std::vector<PhraseKey> phrase;
  PhraseKey::Seconds time{0};
  for (const Key key : keys) {
    const auto position = static_cast<float>(std::clamp(1 + 0.8 * rng.signedUnit(), 0.0, 3.0));
    phrase.push_back({time, codeOf(key), position});
    time += key == Key::space ? pauseAfterWord : PhraseKey::Seconds(0.09 + 0.06 * rng.unit());
  }
  return phrase;
}

}  // namespace tobrin
