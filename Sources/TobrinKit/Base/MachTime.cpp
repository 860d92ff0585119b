#include "Base/MachTime.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace tobrin {
namespace {

constexpr double nanosecondsPerMillisecond = 1'000'000.0;
constexpr double firstUnrepresentable = 18'446'744'073'709'551'616.0;  // 2^64

}  // namespace

uint64_t MachTime::now() {
  const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(sinceBoot).count());
}

double MachTime::milliseconds(uint64_t ticks) {
  return static_cast<double>(ticks) * numer / denom / nanosecondsPerMillisecond;
}

uint64_t MachTime::ticks(double milliseconds) {
  const double result = std::max(milliseconds, 0.0) * nanosecondsPerMillisecond * denom / numer;
  if (!(result < firstUnrepresentable)) std::abort();
  return static_cast<uint64_t>(result);
}

double MachTime::delta(uint64_t a, uint64_t b) {
  return a >= b ? milliseconds(a - b) : -milliseconds(b - a);
}

}  // namespace tobrin
