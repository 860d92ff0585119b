/// Removes steady noise from a recording of keys where that helps and does no harm, which is
/// measured on the recording itself. Thread: any.
#pragma once

#include <span>
#include <vector>

#include "Recording/ClockFit.h"
#include "Recording/KeySounds.h"
#include "Recording/KeyedRecording.h"

namespace tobrin {

struct NoiseRemoval {
  std::vector<float> samples;  ///< of the whole recording; empty where it is better left as it is
  double loweredDb = 0;        ///< by how much the noise in pauses is lower
};

/// Noise far below the keys is left alone. Otherwise it is lowered where the pauses are long enough
/// to learn it from and become at least 6 dB quieter, while the usual press changes its level, and
/// the share of its first 3 ms in that, by no more than half a dB. `sounds` are those of the
/// recording's keys.
[[nodiscard]] NoiseRemoval removeNoise(const KeyedRecording& recording,
                                       std::span<const KeyEventSound> sounds, const ClockFit& fit);

}  // namespace tobrin
