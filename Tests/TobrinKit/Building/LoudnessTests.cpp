#include "Building/Loudness.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "Base/SplitMix64.h"

namespace tobrin {
namespace {

constexpr double rate = 48000;
constexpr double silent = -std::numeric_limits<double>::infinity();

/// Adds seconds of a 997 Hz sine whose peak is `peakDb` below full scale.
void addSine(std::vector<float>& channel, double seconds, double peakDb) {
  const double amplitude = std::pow(10, peakDb / 20);
  for (int n = 0; n < static_cast<int>(seconds * rate); ++n)
    channel.push_back(
        static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * 997 * n / rate)));
}

std::vector<float> noise(std::size_t frames, double amplitude) {
  SplitMix64 rng(1);
  std::vector<float> channel(frames);
  for (float& sample : channel)
    sample = static_cast<float>(amplitude * rng.signedUnit());
  return channel;
}

/// The programme signals of EBU Tech 3341: pairs of seconds and dBFS, in both channels.
TEST(Loudness, MeasuresReferenceProgrammes) {
  struct Row {
    const char* label;
    std::vector<std::pair<double, double>> parts;
    double lufs;
  };
  const Row rows[] = {
      {"steady", {{20, -23}}, -23},
      {"relative gate", {{10, -36}, {60, -23}, {10, -36}}, -23},
      {"both gates", {{10, -72}, {10, -36}, {60, -23}, {10, -36}, {10, -72}}, -23},
      {"below the relative gate counts not, within it does",
       {{20, -26}, {20.1, -20}, {20, -26}},
       -23},
  };
  for (const Row& row : rows) {
    std::vector<float> channel;
    for (const auto& [seconds, peakDb] : row.parts)
      addSine(channel, seconds, peakDb);
    EXPECT_NEAR(integratedLoudness(channel, channel, rate), row.lufs, 0.1) << row.label;
  }
}

/// To more places than any listener needs: every pack and render is levelled by it.
TEST(Loudness, OfEveryPitchIsAsItWas) {
  for (const auto& [hz, lufs] : {std::pair{25.0, -33.39775330559},
                                 {60, -26.47433042766},
                                 {400, -23.64709101860},
                                 {1500, -21.62253513391},
                                 {8000, -19.63451324066}}) {
    std::vector<float> channel(48'000);
    for (std::size_t n = 0; n < channel.size(); ++n)
      channel[n] = static_cast<float>(
          0.1 * std::sin(2 * std::numbers::pi * hz * static_cast<double>(n) / rate));
    const std::vector<float> other = noise(48'000, 0.01);
    EXPECT_NEAR(integratedLoudness(channel, other, rate), lufs, 1e-6) << hz;
  }
}

TEST(Loudness, NeedsOneLoudBlockAndDropsThePartialOneAtTheEnd) {
  auto sound = noise(43'200, 0.1);
  EXPECT_EQ(integratedLoudness(std::span(sound).first(19'199), {}, rate), silent);
  EXPECT_GT(integratedLoudness(std::span(sound).first(19'200), {}, rate), -30);
  EXPECT_EQ(integratedLoudness(noise(48'000, 1e-4), {}, rate), silent);
  EXPECT_EQ(integratedLoudness({}, {}, rate), silent);
  const double whole = integratedLoudness(sound, {}, rate);
  sound.resize(43'200 + 4'799, 1.0f);
  EXPECT_EQ(integratedLoudness(sound, {}, rate), whole);
  sound.resize(43'200 + 4'800, 1.0f);
  EXPECT_NE(integratedLoudness(sound, {}, rate), whole);
}

/// A long pause takes the filter's state to zero, which must leave no trace in what follows.
TEST(Loudness, ForgetsWhatLiesBeforeALongPause) {
  const auto sound = noise(96'000, 0.1);
  std::vector<float> late(480'000 - 96'000);
  late.insert(late.end(), sound.begin(), sound.end());
  std::vector<float> twice = sound;
  twice.resize(480'000 - 96'000);
  twice.insert(twice.end(), sound.begin(), sound.end());
  EXPECT_NEAR(integratedLoudness(twice, {}, rate), integratedLoudness(late, {}, rate), 0.05);
}

}  // namespace
}  // namespace tobrin
