#include "Building/WAVWriter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

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
  struct Row {
    const char* label;
    Channel left;
    bool stereo;
    uint64_t dataBytes;
  };
  for (const Row& row : {Row{"empty mono", {}, false, 0}, Row{"empty stereo", {}, true, 0},
                         Row{"mono", {0, 0, 0}, false, 6}, Row{"stereo", {0, 0, 0}, true, 12}}) {
    SCOPED_TRACE(row.label);
    const std::string bytes = WAVWriter::encode(
        row.left, row.stereo ? std::optional<WAVWriter::Channel>(row.left) : std::nullopt, 44'100);
    const uint64_t frameBytes = row.stereo ? 4 : 2;
    EXPECT_EQ(bytes.size(), 44 + row.dataBytes);
    EXPECT_EQ(bytes.substr(0, 4) + bytes.substr(8, 8) + bytes.substr(36, 4), "RIFFWAVEfmt data");
    EXPECT_EQ(field(bytes, 4, 4), 36 + row.dataBytes);
    EXPECT_EQ(field(bytes, 16, 4), 16u);
    EXPECT_EQ(field(bytes, 20, 2), 1u);
    EXPECT_EQ(field(bytes, 22, 2), frameBytes / 2);
    EXPECT_EQ(field(bytes, 24, 4), 44'100u);
    EXPECT_EQ(field(bytes, 28, 4), 44'100 * frameBytes);
    EXPECT_EQ(field(bytes, 32, 2), frameBytes);
    EXPECT_EQ(field(bytes, 34, 2), 16u);
    EXPECT_EQ(field(bytes, 40, 4), row.dataBytes);
  }
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

  const Channel limits = {0, 0.5f, -0.5f, 0.99f, 1, 1.5f, std::nanf(""), -1, -3};
  EXPECT_EQ(samplesOf(WAVWriter::encode(limits, {}, 48'000)),
            (std::vector<int>{0, 16383, -16383, 32439, 32767, 32767, 32767, -32766, -32767}));
}

TEST(WAVWriterDeathTest, RefusesWhatTheHeaderCannotHold) {
  const Channel sound(4);
  EXPECT_DEATH(WAVWriter::encode(sound, {}, -1), "");
  EXPECT_DEATH(WAVWriter::encode(sound, sound, int64_t{1} << 30), "");
  EXPECT_DEATH(WAVWriter::encode(sound, std::span(sound).first(3), 48'000), "");
}

}  // namespace
}  // namespace tobrin
