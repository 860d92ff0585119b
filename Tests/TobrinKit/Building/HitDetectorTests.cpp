#include "Building/HitDetector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tobrin {
namespace {

constexpr double rate = 48000;

struct Part {
  double ms;
  double level;
};

/// A tone far above rumble that changes its level where it passes zero; a single sample is a click.
std::vector<float> soundOf(const std::vector<Part>& parts) {
  std::vector<float> sound;
  for (const Part& part : parts) {
    const auto frames = static_cast<std::size_t>(std::lround(part.ms * rate / 1000));
    for (std::size_t i = 0; i < frames; ++i) {
      const double turn = 3000 * static_cast<double>(sound.size()) / rate;
      const double value = frames == 1 ? 1 : std::sin(2 * std::numbers::pi * turn);
      sound.push_back(static_cast<float>(part.level * value));
    }
  }
  return sound;
}

/// Each limit from both sides: the recording, what is one hit in it, where the hits are, in ms.
TEST(HitDetector, HoldsItsLimits) {
  const Part still{200, 1e-5}, gap{10, 1e-4}, base{100, 0.01}, peak{1000 / rate, 0.1},
      rest{15, 0.05};
  const struct {
    const char* label;
    std::vector<Part> parts;
    double mergeMs;
    std::vector<double> onsets;
  } rows[] = {
      {"17.6 dB over the floor", {{200, 0.001}, {50, 0.00759}}, 5, {}},
      {"18.4 dB", {{200, 0.001}, {50, 0.00832}}, 5, {200}},
      {"a rise of 11.7 dB", {still, base, {100, 0.03846}}, 5, {200}},
      {"of 12.3 dB", {still, base, {100, 0.0412}}, 5, {200, 300}},
      {"of 10.2 dB in 3 ms",
       {still, base, {1, 0.0148}, {1, 0.0219}, {1, 0.0324}, {1, 0.0479}, {50, 0.0708}},
       5,
       {200}},
      {"of 13.2 dB in 3 ms",
       {still, base, {1, 0.0166}, {1, 0.0275}, {1, 0.0457}, {50, 0.0759}},
       5,
       {200, 301}},
      {"2.7 dB over the last", {still, {10, 0.1}, gap, {20, 0.1365}}, 5, {200}},
      {"3.3 dB", {still, {10, 0.1}, gap, {20, 0.1462}}, 5, {200, 220}},
      {"as loud as 25 ms before", {still, {10, 0.1}, {25, 1e-4}, {20, 0.1}}, 5, {200}},
      {"31 ms", {still, {10, 0.1}, {31, 1e-4}, {20, 0.1}}, 5, {200, 241}},
      {"in two steps, 1.5 ms apart", {still, base, {1.5, 0.0375}, {20, 0.05}}, 5, {200, 300}},
      {"3 ms", {still, base, {3, 0.0375}, {20, 0.05}}, 5, {200}},
      {"touched 11 ms before", {still, {2, 0.01}, {9, 1e-4}, peak, rest}, 40, {200}},
      {"13 ms", {still, {2, 0.01}, {11, 1e-4}, peak, rest}, 40, {213}},
      {"88 ms", {still, {2, 0.01}, {86, 1e-4}, peak, rest}, 150, {288}},
      {"94 ms", {still, {2, 0.01}, {92, 1e-4}, peak, rest}, 150, {200}},
      {"39 % of its peak before", {still, {10, 0.01}, {4, 0.039}, peak, rest}, 40, {200}},
      {"31 %", {still, {10, 0.01}, {4, 0.031}, peak, rest}, 40, {210}},
      {"22 %", {still, {10, 0.01}, {4, 0.0215}, peak, rest}, 40, {210}},
      {"16 %", {still, {10, 0.01}, {4, 0.016}, peak, rest}, 40, {214}},
      {"much louder 2.9 ms later", {still, {2.9, 0.02}, {20, 0.1}}, 40, {202.9}},
      {"4.2 ms", {still, {4.2, 0.02}, {20, 0.1}}, 40, {200}},
      {"39 % until 3.5 ms before",
       {still, {8, 0.01}, {2, 0.039}, {3.5, 1e-4}, peak, rest},
       40,
       {200}},
      {"4.5 ms", {still, {8, 0.01}, {2, 0.039}, {4.5, 1e-4}, peak, rest}, 40, {214.5}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.label);
    const auto found = findOnsets(soundOf(row.parts), rate, row.mergeMs).samples;
    ASSERT_EQ(found.size(), row.onsets.size()) << ::testing::PrintToString(found);
    for (std::size_t i = 0; i < found.size(); ++i)
      EXPECT_NEAR(static_cast<double>(found[i]) * 1000 / rate, row.onsets[i], 0.6);
  }
}

}  // namespace
}  // namespace tobrin
