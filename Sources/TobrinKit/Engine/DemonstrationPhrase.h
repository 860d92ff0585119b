/// A short phrase that shows what a pack sounds like: two words as a practised typist types them.
/// Thread: any.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "Base/SplitMix64.h"

namespace tobrin {

struct PhraseKey {
  using Seconds = std::chrono::duration<double>;

  Seconds press{};  ///< from the phrase's start
  uint16_t code = 0;
  float position = 1;  ///< tier position, 0 to 3
};

/// How long each key of the phrase is held.
inline constexpr PhraseKey::Seconds phraseKeyHeld{0.07};

/// Strengths and rhythm vary with the generator.
std::vector<PhraseKey> demonstrationPhrase(SplitMix64& rng);

}  // namespace tobrin
