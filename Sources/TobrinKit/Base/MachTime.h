/// The one monotonic clock of the system. Key events and motion samples are stamped in its ticks,
/// so that they compare directly. A tick is one nanosecond of CLOCK_MONOTONIC. Thread: any.
#pragma once

#include <cstdint>

namespace tobrin {

struct MachTime {
  /// Nanoseconds a tick, as a fraction.
  static constexpr uint32_t numer = 1;
  static constexpr uint32_t denom = 1;

  /// The present, in ticks.
  static uint64_t now();

  static double milliseconds(uint64_t ticks);

  /// Truncated; negative durations give 0. Ends the process where 64 bits do not hold the result.
  static uint64_t ticks(double milliseconds);

  /// a - b in milliseconds, signed, without wrapping.
  static double delta(uint64_t a, uint64_t b);
};

}  // namespace tobrin
