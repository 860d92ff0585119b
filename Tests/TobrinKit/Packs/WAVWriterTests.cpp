#include "Packs/WAVWriter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

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
  const std::string stereo = encodeWAV(sound, sound, 44'100);
  EXPECT_EQ(stereo.size(), 56u);
  // 176,400 bytes a second.
  EXPECT_EQ(
      stereo.substr(0, 44),
      "RIFF\x30\0\0\0WAVEfmt \x10\0\0\0\1\0\2\0\x44\xAC\0\0\x10\xB1\2\0\4\0\x10\0data\x0C\0\0\0"s);
  EXPECT_EQ(
      encodeWAV({}, {}, 48'000),
      "RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x80\xBB\0\0\0\x77\1\0\2\0\x10\0data\0\0\0\0"s);
}

/// The expected numbers come from a second implementation of the dither, in another language.
TEST(WAVWriter, DithersAndLimits) {
  Channel ramp;
  for (int step = -6; step < 6; ++step)
    ramp.push_back(static_cast<float>(step * 0.001));
  EXPECT_EQ(samplesOf(encodeWAV(ramp, {}, 48'000)),
            (std::vector<int16_t>{-196, -163, -131, -98, -64, -32, 0, 32, 66, 97, 131, 164}));
  ramp.resize(6);
  EXPECT_EQ(
      samplesOf(encodeWAV(ramp, ramp, 48'000)),
      (std::vector<int16_t>{-196, -196, -164, -163, -130, -131, -98, -98, -64, -65, -32, -32}));

  const Channel limits = {0, 0.5f, -0.5f, 0.99f, 1, 1.5f, std::nanf(""), -1, -INFINITY};
  EXPECT_EQ(samplesOf(encodeWAV(limits, {}, 48'000)),
            (std::vector<int16_t>{0, 16383, -16383, 32439, 32767, 32767, 32767, -32766, -32767}));
}

}  // namespace
}  // namespace tobrin
