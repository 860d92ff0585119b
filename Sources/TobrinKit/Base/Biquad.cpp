#include "Base/Biquad.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

namespace tobrin {
namespace {

/// What the three designs share; near half the rate they would be unstable or silent.
struct Design {
  Design(double frequency, double q, double rate) {
    assert(frequency > 0 && q > 0 && rate > 0);
    const double w = 2 * std::numbers::pi * std::min(frequency, 0.45 * rate) / rate;
    alpha = std::sin(w) / (2 * q);
    c = std::cos(w);
  }
  [[nodiscard]] std::array<double, 3> a() const { return {1 + alpha, -2 * c, 1 - alpha}; }

  double alpha;
  double c;
};

}  // namespace

Biquad Biquad::lowpass(double frequency, double q, double rate) {
  const Design d(frequency, q, rate);
  return {{(1 - d.c) / 2, 1 - d.c, (1 - d.c) / 2}, d.a()};
}

Biquad Biquad::highpass(double frequency, double q, double rate) {
  const Design d(frequency, q, rate);
  return {{(1 + d.c) / 2, -(1 + d.c), (1 + d.c) / 2}, d.a()};
}

Biquad Biquad::bandpass(double frequency, double q, double rate) {
  const Design d(frequency, q, rate);
  return {{d.alpha, 0, -d.alpha}, d.a()};
}

}  // namespace tobrin
