/// What the tools' streams carry: interleaved stereo floats. Thread: any.
#pragma once

#include <cstddef>

namespace tobrin::testing {

constexpr size_t channelCount = 2;
constexpr double sampleRate = 48000;

}  // namespace tobrin::testing
