#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <vector>

#include "Building/Loudness.h"
#include "Building/WAVWriter.h"
#include "Engine/SplitMix64.h"

namespace tobrin {
namespace {

using Channel = std::vector<float>;

std::vector<int16_t> samplesOf(const std::string& bytes) {
  std::vector<int16_t> samples((bytes.size() - 44) / 2);
  std::memcpy(samples.data(), bytes.data() + 44, 2 * samples.size());
  return samples;
}

TEST(WAVWriter, HeaderDescribesTheSamples) {
  using namespace std::string_literals;
  const Channel sound(3);
  const std::string stereo = WAVWriter::encode(sound, sound, 44'100);
  EXPECT_EQ(stereo.size(), 56u);
  // 176,400 bytes a second.
  EXPECT_EQ(
      stereo.substr(0, 44),
      "RIFF\x30\0\0\0WAVEfmt \x10\0\0\0\1\0\2\0\x44\xAC\0\0\x10\xB1\2\0\4\0\x10\0data\x0C\0\0\0"s);
  EXPECT_EQ(
      WAVWriter::encode({}, {}, 48'000),
      "RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x80\xBB\0\0\0\x77\1\0\2\0\x10\0data\0\0\0\0"s);
}

/// The expected numbers come from a second implementation of the dither, in another language.
TEST(WAVWriter, DithersAndLimits) {
  Channel ramp;
  for (int step = -6; step < 6; ++step)
    ramp.push_back(static_cast<float>(step * 0.001));
  EXPECT_EQ(samplesOf(WAVWriter::encode(ramp, {}, 48'000)),
            (std::vector<int16_t>{-196, -163, -131, -98, -64, -32, 0, 32, 66, 97, 131, 164}));
  ramp.resize(6);
  EXPECT_EQ(
      samplesOf(WAVWriter::encode(ramp, ramp, 48'000)),
      (std::vector<int16_t>{-196, -196, -164, -163, -130, -131, -98, -98, -64, -65, -32, -32}));

  const Channel limits = {0, 0.5f, -0.5f, 0.99f, 1, 1.5f, std::nanf(""), -1, -INFINITY};
  EXPECT_EQ(samplesOf(WAVWriter::encode(limits, {}, 48'000)),
            (std::vector<int16_t>{0, 16383, -16383, 32439, 32767, 32767, 32767, -32766, -32767}));
}

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
    EXPECT_NEAR(Loudness::integrated(channel, channel, rate), row.lufs, 0.1) << row.label;
  }
}

TEST(Loudness, NeedsOneLoudBlockAndDropsThePartialOneAtTheEnd) {
  auto sound = noise(43'200, 0.1);
  EXPECT_EQ(Loudness::integrated(std::span(sound).first(19'199), {}, rate), silent);
  EXPECT_GT(Loudness::integrated(std::span(sound).first(19'200), {}, rate), -30);
  EXPECT_EQ(Loudness::integrated(noise(48'000, 1e-4), {}, rate), silent);
  EXPECT_EQ(Loudness::integrated({}, {}, rate), silent);
  const double whole = Loudness::integrated(sound, {}, rate);
  sound.resize(43'200 + 4'799, 1.0f);
  EXPECT_EQ(Loudness::integrated(sound, {}, rate), whole);
  sound.resize(43'200 + 4'800, 1.0f);
  EXPECT_NE(Loudness::integrated(sound, {}, rate), whole);
}

/// A long pause takes the filter's state to zero, which must leave no trace in what follows.
TEST(Loudness, ForgetsWhatLiesBeforeALongPause) {
  const auto sound = noise(96'000, 0.1);
  std::vector<float> late(480'000 - 96'000);
  late.insert(late.end(), sound.begin(), sound.end());
  std::vector<float> twice = sound;
  twice.resize(480'000 - 96'000);
  twice.insert(twice.end(), sound.begin(), sound.end());
  EXPECT_NEAR(Loudness::integrated(twice, {}, rate), Loudness::integrated(late, {}, rate), 0.05);
}

}  // namespace
}  // namespace tobrin
