#include "Recording/NoiseRemoval.h"

#include <gtest/gtest.h>

#include <cmath>

#include "ComposedKeys.h"
#include "Recording/KeyedTakes.h"
#include "Recording/NoiseGate.h"

namespace tobrin {
namespace {

double decibels(std::span<const float> samples, std::span<const float> without = {}) {
  double sum = 1e-12;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const auto x = static_cast<double>(samples[i] - (without.empty() ? 0 : without[i]));
    sum += x * x;
  }
  return 10 * std::log10(sum / static_cast<double>(samples.size()));
}

TEST(NoiseRemoval, LowersNoiseAndLeavesStrokesAsTheyWere) {
  const KeyedCondition quiet{.signalDb = 90, .interval = 0.25, .seconds = 20};
  KeyedCondition noisy = quiet;
  noisy.signalDb = 25;
  const ComposedKeys truth = composeKeys(quiet);
  const KeyedRecording recording = composeKeys(noisy).recording;
  const KeyedTakes takes = findKeyedTakes(recording);
  const NoiseRemoval removed = removeNoise(recording, takes.sounds, takes.fit);
  EXPECT_GE(removed.loweredDb, 9);
  ASSERT_EQ(removed.samples.size(), recording.samples.size());
  EXPECT_EQ(takes.noiseLoweredDb, removed.loweredDb);
  std::size_t presses = 0;
  for (std::size_t key = 0; key < truth.truths.size(); ++key) {
    if (!truth.truths[key].isSeparable || takes.sounds[key].hit.isRelease) continue;
    ++presses;
    const auto part = [&](const std::vector<float>& samples, std::size_t from, std::size_t count) {
      return std::span(samples).subspan(*truth.truths[key].onset + from, count);
    };
    const auto& clean = truth.recording.samples;
    const double level = decibels(part(clean, 0, 1440));
    EXPECT_NEAR(decibels(part(removed.samples, 0, 1440)), level, 0.3);
    EXPECT_NEAR(decibels(part(removed.samples, 0, 144)), decibels(part(clean, 0, 144)), 0.7);
    EXPECT_LT(decibels(part(removed.samples, 1440, 1440), part(clean, 1440, 1440)),
              decibels(part(recording.samples, 1440, 1440), part(clean, 1440, 1440)) - 4);
  }
  EXPECT_GT(presses, 50u);
}

TEST(NoiseRemoval, LeavesAloneWhatItCannotImprove) {
  const ComposedKeys quiet = composeKeys({.signalDb = 70, .seconds = 12});
  const KeyedTakes good = findKeyedTakes(quiet.recording);
  EXPECT_TRUE(removeNoise(quiet.recording, good.sounds, good.fit).samples.empty());
  const Pause shortPause{100, 10'000};
  const Pause longPause{100, 11'000};
  EXPECT_TRUE(gateNoise(quiet.recording.samples, {&shortPause, 1}).empty());
  EXPECT_FALSE(gateNoise(quiet.recording.samples, {&longPause, 1}).empty());
}

}  // namespace
}  // namespace tobrin
