/// Renders the sound of one key from a profile. The same profile, group, tier and variant give the
/// same bits, since all random numbers are seeded by these. Not real-time. Thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Base/KeyEvent.h"
#include "Synth/SynthProfile.h"

namespace tobrin {

inline constexpr double synthSampleRate = 48000;  ///< Hz, of every take

/// How a group's keys differ from the letters: factors, and the amount of stabiliser rattle.
struct GroupShape {
  double frequency = 1;
  double decay = 1;
  double level = 1;
  double rattle = 0;
};

/// A synthesized key sound at `synthSampleRate`.
struct KeySound {
  std::vector<float> left;
  std::vector<float> right;  ///< as long as `left`
};

[[nodiscard]] GroupShape groupShape(KeyGroup group);

/// How hard the key strikes: 0.45 to 1.4 for a press; 0.6 for a release, which has no tier.
[[nodiscard]] double strikeStrength(std::optional<Tier> tier);

/// One take, not levelled. Without a tier it is the key's release; `variant` counts from 0 and
/// changes the noise and every detail of the key.
[[nodiscard]] KeySound renderKey(KeyGroup group, std::optional<Tier> tier, uint64_t variant,
                                 const SynthProfile& profile);

}  // namespace tobrin
