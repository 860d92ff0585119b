/// Measures a detected hit: how loud, how bright, how long, how clean. Thread: any.
#pragma once

#include <span>
#include <vector>

#include "Building/HitDetector.h"
#include "Building/RecordingSlicer.h"

namespace tobrin {

/// A recording as the measuring steps see it; views, nothing is owned.
struct RecordingView {
  std::span<const float> left;
  std::span<const float> right;  ///< at least as long as `left`
  std::span<const float> mono;   ///< half the sum of both
  double rate = 48000;           ///< samples a second
};

/// One hit an onset, in order, measured but not yet sorted into presses and releases.
[[nodiscard]] std::vector<RecordedHit> measureHits(const RecordingView& recording,
                                                   const Onsets& onsets);

}  // namespace tobrin
