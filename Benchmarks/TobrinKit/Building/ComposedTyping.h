/// Recordings of typing composed from synthesized keys, with the truth about every sound in them:
/// what a slicer is judged by. Seeded, so the same on every run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Synth/SynthProfile.h"

namespace tobrin {

/// How somebody types, on what, and what the recording went through. Times in seconds.
struct TypingCondition {
  enum class Damage : uint8_t { none, noise, gated, muffled, codec, room, hum };

  std::string name{};
  const SynthProfile* profile = &SynthProfile::cream();
  double interval = 0.2;      ///< median from press to press
  double hold = 0.095;        ///< median from press to its release
  double releaseDb = -12;     ///< median level of a release against its own press
  double strengthSpread = 9;  ///< strengths lie this many dB around their mean, evenly
  double heard = 0.9;         ///< share of presses whose release sounds at all
  double bounces = 0;         ///< share of presses with a second knock 28 to 50 ms later
  double contacts = 0;        ///< share of presses that a finger's touch comes 28 to 60 ms ahead of
  double topBounces = 0;      ///< share of releases with a second knock 28 to 50 ms later
  double ticks = 0;           ///< faint sounds of no key a second, 24 to 48 dB below the presses
  double wideShare = 0.15;    ///< share of presses on the space bar
  double rate = 48000;        ///< Hz
  Damage damage = Damage::none;
  uint64_t seed = 1;
};

struct ComposedTyping {
  enum class Sound : uint8_t { press, release, knock };

  struct Stroke {
    std::size_t onset = 0;  ///< sample
    Sound sound = Sound::press;
    double strengthDb = 0;  ///< as it was meant
    bool isWide = false;
  };

  std::vector<float> left;
  std::vector<float> right;
  std::vector<Stroke> strokes;  ///< in time order
  double rate = 48000;          ///< Hz
};

ComposedTyping composeTyping(const TypingCondition& condition, double seconds);

}  // namespace tobrin
