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

  static constexpr double levelSeconds = 0.0005;  ///< from one level to the next

  /// The levels above 700 Hz that onsets and noise floor are measured on: of each millisecond in
  /// dB, one every `levelSeconds`.
  static std::vector<float> levels(std::span<const float> mono, double rate);

  /// `mono` at `rate` samples a second; onsets closer than `mergeWithinMs` count as one.
  static Onsets find(std::span<const float> mono, double rate, double mergeWithinMs);
};

}  // namespace tobrin
