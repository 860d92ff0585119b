/// Finds where key sounds start in a recording: steep rises of the level above 700 Hz, well above
/// the noise floor and above the decay of earlier sounds. Thread: any.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tobrin {

struct Onsets {
  std::vector<std::size_t> samples;  ///< in ascending order
  std::vector<float> signal;         ///< the mono mix above 700 Hz that they were found in
  float floor = 0;                   ///< its noise floor, as an amplitude
};

inline constexpr double detectionLevelSeconds = 0.0005;  ///< from one level to the next

/// Levels above 700 Hz in dB, each over 1 ms, one every `detectionLevelSeconds`: what onsets and
/// noise floor are found in. `rate` in samples a second.
[[nodiscard]] std::vector<float> detectionLevels(std::span<const float> mono, double rate);

/// `mono` at `rate` samples a second; onsets closer than `mergeWithinMs` count as one.
[[nodiscard]] Onsets findOnsets(std::span<const float> mono, double rate, double mergeWithinMs);

}  // namespace tobrin
