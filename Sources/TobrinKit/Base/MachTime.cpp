#include "Base/MachTime.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace tobrin {
namespace {

constexpr double nanosecondsPerMillisecond = 1'000'000.0;
constexpr double firstUnrepresentable = 18'446'744'073'709'551'616.0;  // 2^64

}  // namespace

uint64_t machNow() {
  const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(sinceBoot).count());
}

double machMilliseconds(uint64_t ticks) {
  return static_cast<double>(ticks) / nanosecondsPerMillisecond;
}

uint64_t machTicks(double milliseconds) {
  const double result = std::max(milliseconds, 0.0) * nanosecondsPerMillisecond;
  if (!(result < firstUnrepresentable)) std::abort();
  return static_cast<uint64_t>(result);
}

double machDelta(uint64_t a, uint64_t b) {
  return a >= b ? machMilliseconds(a - b) : -machMilliseconds(b - a);
}

}  // namespace tobrin
