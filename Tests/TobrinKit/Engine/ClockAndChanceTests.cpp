#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>

#include "Engine/MachTime.h"
#include "Engine/SplitMix64.h"

namespace tobrin {
namespace {

TEST(SplitMix64, GivesThePublishedSequence) {
  SplitMix64 rng(0);
  EXPECT_EQ(rng.next(), 0xE220A8397B1DCDAFu);
  EXPECT_EQ(rng.next(), 0x6E789E6AA1B965F4u);
  for (int i = 0; i < 100'000; ++i) {
    const double u = rng.unit();
    ASSERT_TRUE(u >= 0.0 && u < 1.0);
  }
}

TEST(SplitMix64, ShuffleDependsOnTheLengthAlone) {
  std::vector<int> numbers(23);
  std::iota(numbers.begin(), numbers.end(), 0);
  auto shuffled = shuffledDeterministically(numbers);
  EXPECT_EQ(shuffled, shuffledDeterministically(numbers));
  EXPECT_NE(shuffled, numbers);
  std::sort(shuffled.begin(), shuffled.end());
  EXPECT_EQ(shuffled, numbers) << "a permutation loses nothing";

  const bool swaps = SplitMix64(uint64_t{2} * 0x9E3779B9u).next() % 2 == 0;
  const auto pair = shuffledDeterministically(std::vector<int>{1, 2});
  EXPECT_EQ(pair, swaps ? (std::vector<int>{2, 1}) : (std::vector<int>{1, 2}));
  EXPECT_EQ(shuffledDeterministically(std::vector<int>{7}), std::vector<int>{7});
}

TEST(MachTime, ConvertsWithoutWrapping) {
  EXPECT_EQ(MachTime::ticks(-5), 0u);
  EXPECT_EQ(MachTime::ticks(1.5), 1'500'000u);
  EXPECT_DOUBLE_EQ(MachTime::delta(100, 200), -MachTime::milliseconds(100));
  EXPECT_DOUBLE_EQ(MachTime::delta(200, 100), MachTime::milliseconds(100));
  const uint64_t before = MachTime::now();
  EXPECT_LE(before, MachTime::now());
  EXPECT_DEATH((void)MachTime::ticks(1e300), "");
  EXPECT_DEATH((void)MachTime::ticks(std::numeric_limits<double>::infinity()), "");
}

}  // namespace
}  // namespace tobrin
