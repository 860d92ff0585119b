#include "Base/SplitMix64.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

TEST(SplitMix64, IsThePublishedGenerator) {
  SplitMix64 rng(0);
  EXPECT_EQ(rng.next(), 0xE220A8397B1DCDAFu);
  EXPECT_EQ(rng.next(), 0x6E789E6AA1B965F4u);
}

}  // namespace
}  // namespace tobrin
