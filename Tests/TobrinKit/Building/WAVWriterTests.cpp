#include "Building/WAVWriter.h"

#include <gtest/gtest.h>

#include <cmath>
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

  const Channel limits = {0, 0.5f, -0.5f, 0.99f, 1, 1.5f, std::nanf(""), -1, -3};
  EXPECT_EQ(samplesOf(WAVWriter::encode(limits, {}, 48'000)),
            (std::vector<int>{0, 16383, -16383, 32439, 32767, 32767, 32767, -32766, -32767}));
}

}  // namespace
}  // namespace tobrin
