/// Motion traces with impacts at known times.
#pragma once

#include <vector>

#include "Force/MotionTrace.h"

namespace tobrin::testing {

inline constexpr uint64_t millisecond = 1'000'000;

struct Impact {
  uint64_t atMs;
  double g;
};

/// A 1000 Hz sensor, at rest but for the impacts, whose noise floor has sunk to next to nothing.
inline MotionTrace traceOf(uint64_t ms, const std::vector<Impact>& impacts) {
  MotionTrace trace;
  for (uint64_t i = 0; i < ms; ++i)
    trace.samples.push_back({i * millisecond, {}});
  for (const Impact& impact : impacts)  // the average has moved by a twentieth when it is measured
    trace.samples[impact.atMs].acceleration.z = impact.g / 0.95;
  return trace;
}

}  // namespace tobrin::testing
