/// The one clock of the system, which never goes back. Key events and motion samples are stamped in
/// its ticks, so that they compare directly. A tick is one nanosecond of CLOCK_MONOTONIC.
/// Thread: any.
#pragma once

#include <cstdint>

namespace tobrin {

/// The present, in ticks.
[[nodiscard]] uint64_t machNow();

[[nodiscard]] double machMilliseconds(uint64_t ticks);

/// Truncated; negative durations give 0. Ends the process where 64 bits do not hold the result.
[[nodiscard]] uint64_t machTicks(double milliseconds);

/// a - b in milliseconds, signed, without wrapping.
[[nodiscard]] double machDelta(uint64_t a, uint64_t b);

}  // namespace tobrin
