#include "Synth/Biquad.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

namespace tobrin {
namespace {

constexpr double rate = 48000;
constexpr double butterworth = 0.7071;

/// Gain at one frequency, from the impulse response.
double gainDb(Biquad filter, double frequency) {
  std::complex<double> sum = 0;
  for (int n = 0; n < 48'000; ++n)
    sum += filter.process(n == 0 ? 1 : 0) *
           std::polar(1.0, -2 * std::numbers::pi * frequency * n / rate);
  return 20 * std::log10(std::abs(sum));
}

TEST(Biquad, DesignsHaveTheirCornersAndSlopes) {
  struct Row {
    const char* label;
    Biquad filter;
    double frequency;
    double gainDb;
    double tolerance;
  };
  const Row rows[] = {
      {"low-pass passes", Biquad::lowpass(2000, butterworth, rate), 20, 0, 0.01},
      {"low-pass corner", Biquad::lowpass(2000, butterworth, rate), 2000, -3.01, 0.01},
      {"low-pass slope", Biquad::lowpass(500, butterworth, rate), 2000, -24.1, 0.3},
      {"high-pass passes", Biquad::highpass(2000, butterworth, rate), 20'000, 0, 0.01},
      {"high-pass corner", Biquad::highpass(2000, butterworth, rate), 2000, -3.01, 0.01},
      {"high-pass slope", Biquad::highpass(2000, butterworth, rate), 500, -24.1, 0.3},
      {"band-pass centre", Biquad::bandpass(3000, 2, rate), 3000, 0, 0.001},
      {"band-pass edge", Biquad::bandpass(1000, 10, rate), 1051.2, -3.01, 0.05},
      {"corner is clamped", Biquad::lowpass(30'000, butterworth, rate), 21'600, -3.01, 0.01},
  };
  for (const Row& row : rows)
    EXPECT_NEAR(gainDb(row.filter, row.frequency), row.gainDb, row.tolerance) << row.label;
}

TEST(Biquad, DividesByTheFirstFeedbackCoefficient) {
  Biquad filter({2, 0, 4}, {2, -1, 0});
  EXPECT_EQ(filter.process(1), 1);
  EXPECT_EQ(filter.process(0), 0.5);
  EXPECT_EQ(filter.process(0), 2.25);
}

}  // namespace
}  // namespace tobrin
