#include "Alsa/Interleaving.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace tobrin {
namespace {

template <typename Sample>
std::vector<Sample> interleaved(std::vector<float> left, std::vector<float> right,
                                DeviceFormat format) {
  std::vector<Sample> samples(left.size() + right.size());
  interleave(left, right, format, reinterpret_cast<std::byte*>(samples.data()));
  return samples;
}

TEST(Interleaving, RoundsAndLimitsIntegers) {
  const std::vector<float> left = {0.0F, 1.0F, -1.0F, 0.5F, 1.4F / 32768};
  const std::vector<float> right = {2.0F, -2.0F, 0.25F, -0.5F, 1.6F / 32768};
  EXPECT_EQ(interleaved<int16_t>(left, right, DeviceFormat::int16),
            (std::vector<int16_t>{0, 32767, 32767, -32768, -32768, 8192, 16384, -16384, 1, 2}));
  EXPECT_EQ(interleaved<int32_t>({1.0F, -1.0F, -1.5F, 0.5F}, {}, DeviceFormat::int32),
            (std::vector<int32_t>{2147483647, -2147483647 - 1, -2147483647 - 1, 1073741824}));
  EXPECT_EQ(interleaved<float>({1.5F, 2}, {3, 4}, DeviceFormat::float32),
            (std::vector<float>{1.5F, 3, 2, 4}));
}

}  // namespace
}  // namespace tobrin
