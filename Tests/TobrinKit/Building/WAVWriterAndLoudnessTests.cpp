#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "Building/Loudness.h"
#include "Building/WAVWriter.h"
#include "Engine/SplitMix64.h"

namespace tobrin {
namespace {

using Channel = std::vector<float>;

uint64_t field(const std::string& bytes, std::size_t at, std::size_t size) {
  uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i)
    value |= uint64_t{static_cast<uint8_t>(bytes.at(at + i))} << (8 * i);
  return value;
}

std::vector<int> samplesOf(const std::string& bytes) {
  std::vector<int> samples;
  for (std::size_t at = 44; at < bytes.size(); at += 2)
    samples.push_back(static_cast<int16_t>(field(bytes, at, 2)));
  return samples;
}

TEST(WAVWriter, HeaderDescribesTheSamples) {
  // Sizes of what follows and of the format, rate, bytes a second, size of the samples; PCM,
  // channels, bytes a frame, bits.
  using Fields = std::vector<uint64_t>;
  const auto fieldsOf = [](const std::string& bytes) {
    Fields fields;
    for (const std::size_t at : {4u, 16u, 24u, 28u, 40u})
      fields.push_back(field(bytes, at, 4));
    for (const std::size_t at : {20u, 22u, 32u, 34u})
      fields.push_back(field(bytes, at, 2));
    return fields;
  };
  const Channel sound(3);
  const std::string stereo = WAVWriter::encode(sound, sound, 44'100);
  EXPECT_EQ(stereo.substr(0, 4) + stereo.substr(8, 8) + stereo.substr(36, 4), "RIFFWAVEfmt data");
  EXPECT_EQ(stereo.size(), 56u);
  EXPECT_EQ(fieldsOf(stereo), (Fields{48, 16, 44'100, 176'400, 12, 1, 2, 4, 16}));
  EXPECT_EQ(fieldsOf(WAVWriter::encode({}, {}, 48'000)),
            (Fields{36, 16, 48'000, 96'000, 0, 1, 1, 2, 16}));
}

/// The expected numbers come from a second implementation of the dither, in another language.
TEST(WAVWriter, DithersAndLimits) {
  Channel ramp;
  for (int step = -6; step < 6; ++step)
    ramp.push_back(static_cast<float>(step * 0.001));
  EXPECT_EQ(samplesOf(WAVWriter::encode(ramp, {}, 48'000)),
            (std::vector<int>{-196, -163, -131, -98, -64, -32, 0, 32, 66, 97, 131, 164}));
  ramp.resize(6);
  EXPECT_EQ(samplesOf(WAVWriter::encode(ramp, ramp, 48'000)),
            (std::vector<int>{-196, -196, -164, -163, -130, -131, -98, -98, -64, -65, -32, -32}));

  const Channel limits = {0, 0.5f, -0.5f, 0.99f, 1, 1.5f, std::nanf(""), -1, -INFINITY};
  EXPECT_EQ(samplesOf(WAVWriter::encode(limits, {}, 48'000)),
            (std::vector<int>{0, 16383, -16383, 32439, 32767, 32767, 32767, -32766, -32767}));
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
      {"quieter", {{20, -33}}, -33},
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
  std::vector<float> mono;
  addSine(mono, 5, 0);
  EXPECT_NEAR(Loudness::integrated(mono, {}, rate), -3.01, 0.01);
}

TEST(Loudness, NeedsOneLoudBlock) {
  const auto sound = noise(19'200, 1);
  EXPECT_EQ(Loudness::integrated(std::span(sound).first(19'199), {}, rate), silent);
  EXPECT_GT(Loudness::integrated(sound, {}, rate), -10);
  EXPECT_EQ(Loudness::integrated(std::vector<float>(480'000), {}, rate), silent);
  EXPECT_EQ(Loudness::integrated(noise(48'000, 1e-4), {}, rate), silent);
  EXPECT_EQ(Loudness::integrated({}, {}, rate), silent);
}

TEST(Loudness, DropsThePartialBlockAtTheEnd) {
  auto sound = noise(43'200, 0.1);
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
