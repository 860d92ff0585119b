/// The clock of all times in the desktop tools. Thread: any.
#pragma once

#include <cerrno>
#include <cstdint>
#include <ctime>

#include <sched.h>

namespace tobrin::testing {

/// CLOCK_MONOTONIC in nanoseconds, the clock of X events, of the sound server and of the kernel's
/// input.
inline int64_t monotonicNs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

inline void sleepUntilNs(int64_t ns) {
  const timespec when{ns / 1'000'000'000, ns % 1'000'000'000};
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr) == EINTR) {
  }
}

/// Real-time scheduling where it is permitted: a tool's own delay would look like that of the
/// program it measures.
inline void tryRealTime(int priority) {
  sched_param parameters{};
  parameters.sched_priority = priority;
  sched_setscheduler(0, SCHED_FIFO | SCHED_RESET_ON_FORK, &parameters);
}

}  // namespace tobrin::testing
