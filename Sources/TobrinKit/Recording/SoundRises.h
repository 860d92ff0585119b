/// Finds where a sound begins: moments at which the level of some band rises, however soft the
/// sound, as long as no noise hides it. More sensitive than `findOnsets`, and more often wrong: for
/// callers that know where to look. Thread: any.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tobrin {

/// One rise of the level.
struct SoundRise {
  std::size_t sample = 0;  ///< where it begins
  float evidence = 0;      ///< how sure it is: the logarithm of a likelihood ratio
  float levelDb = 0;       ///< of the 10 ms from there on, above 700 Hz
};

struct SoundRises {
  std::vector<SoundRise> rises;  ///< in order of time, at least 2 ms apart
  std::vector<float> signal;     ///< the recording above 700 Hz
  float floor = 0;               ///< its noise, as an amplitude
};

/// `rate` in Hz. A recording of less than 20 ms has no rises.
[[nodiscard]] SoundRises findRises(std::span<const float> mono, double rate);

}  // namespace tobrin
