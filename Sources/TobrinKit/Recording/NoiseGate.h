/// Lowers steady noise, such as a fan's, in a recording: a gentle gate for each part of the
/// spectrum, learned from pauses. Thread: any.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tobrin {

/// Samples [begin, end) of a recording in which nothing but noise sounds.
struct Pause {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// The recording with its noise up to 12 dB lower where nothing is louder than it. Empty where the
/// pauses are too short to learn from: together less than 20 windows of 11 ms at 48 kHz.
[[nodiscard]] std::vector<float> gateNoise(std::span<const float> mono,
                                           std::span<const Pause> pauses);

}  // namespace tobrin
