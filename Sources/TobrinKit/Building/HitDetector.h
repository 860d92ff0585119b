/// Finds where key sounds start in a recording: steep rises of the level above 700 Hz, well above
/// the noise floor and above what rings on from earlier sounds.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tobrin {

struct HitDetector {
  struct Onsets {
    std::vector<std::size_t> samples;  ///< in ascending order
    std::vector<float> signal;         ///< the mono mix above 700 Hz that they were found in
    float floor = 0;                   ///< its noise floor, as an amplitude
  };

  /// `mono` at `rate` samples a second; onsets closer than `mergeWithinMs` count as one.
  static Onsets find(std::span<const float> mono, double rate, double mergeWithinMs);
};

}  // namespace tobrin
