/// Recordings of typing composed from synthesized keys, with the keys as a keyboard reports them
/// and the truth about every sound: what the reading of one's own keyboard is judged by. Seeded, so
/// the same on every run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Recording/KeyedRecording.h"
#include "Synth/SynthProfile.h"

namespace tobrin {

/// How somebody types and what records it. Times in seconds.
struct KeyedCondition {
  std::string name{};
  const SynthProfile* profile = &SynthProfile::cream();
  double delay = 0.04;        ///< from a key's event to its sound
  double drift = 0;           ///< s a second by which that grows
  double signalDb = 60;       ///< of the typical press, 30 ms of it, above the white noise
  double interval = 0.2;      ///< median from press to press
  double hold = 0.095;        ///< median from press to release
  double unevenness = 0.004;  ///< events lie up to this far from where they would be, evenly
  double releaseDb = -12;     ///< of a release against its press
  double strengthSpread = 9;  ///< strengths lie this many dB around their mean, evenly
  double unheard = 0.05;      ///< share of presses and of releases that make no sound
  double knocks = 0;          ///< sounds of no key a second, as loud as presses
  double speech = 0;          ///< share of the time in which somebody speaks
  double seconds = 60;
  uint64_t seed = 1;
};

struct ComposedKeys {
  /// What is true of one key event of the recording.
  struct Truth {
    std::optional<std::size_t> onset;  ///< sample at which its sound begins
    /// As loud as all else that sounds in its first 30 ms, and no other key, heard or not, and no
    /// knock within 25 ms.
    bool isSeparable = false;
  };

  /// Whether somebody speaks while the key sounds.
  [[nodiscard]] bool isSpokenOver(std::size_t key) const;

  KeyedRecording recording;
  std::vector<Truth> truths;        ///< of the recording's keys, in the same order
  std::vector<std::size_t> knocks;  ///< onsets of sounds of no key
  std::vector<std::size_t> speech;  ///< first samples of what is spoken
};

[[nodiscard]] ComposedKeys composeKeys(const KeyedCondition& condition);

}  // namespace tobrin
