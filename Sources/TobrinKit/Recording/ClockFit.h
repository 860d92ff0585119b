/// How the times of keys and the samples of a recording go together: a delay (the microphone's path
/// less the keyboard's own) and a slow drift, found in the recording itself. Thread: any.
#pragma once

#include <span>

#include "Recording/KeyedRecording.h"
#include "Recording/SoundRises.h"

namespace tobrin {

struct ClockFit {
  double delay = 0;       ///< s from a press's event to its sound, at the recording's start
  double drift = 0;       ///< s a second by which the delay grows
  double releaseLag = 0;  ///< s that releases sound later after their event than presses do
  double spread = 0;      ///< s; how far sounds lie around that, as a standard deviation
  bool isKnown = false;   ///< false where too few sounds go with keys; the rest is 0 then

  bool operator==(const ClockFit&) const = default;

  /// When the key's sound is to be expected, in seconds from the recording's first sample.
  [[nodiscard]] double soundOf(const RecordedKey& key) const;
};

/// Finds the fit in which the most keys have a sound. Keys without a sound and sounds without a key
/// do no harm while they are fewer than half. `rate` of the rises' samples in Hz.
[[nodiscard]] ClockFit fitClocks(std::span<const SoundRise> rises,
                                 std::span<const RecordedKey> keys, double rate);

}  // namespace tobrin
