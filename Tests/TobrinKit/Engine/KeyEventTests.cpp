#include "Engine/KeyEvent.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

TEST(KeyEvent, GroupNamesAreExactAndTierNamesIgnoreCase) {
  for (const KeyGroup group : allKeyGroups)
    EXPECT_EQ(keyGroup(rawValue(group)), group);
  for (const char* wrong : {"Alpha", "", "alpha ", "keys"})
    EXPECT_FALSE(keyGroup(wrong)) << wrong;
  for (const Tier each : allTiers)
    EXPECT_EQ(tierNamed(name(each)), each);
  EXPECT_EQ(tierNamed("SLAM"), Tier::slam);
  EXPECT_EQ(tierNamed("Soft"), Tier::soft);
  for (const char* wrong : {"loud", "", "slam2"})
    EXPECT_FALSE(tierNamed(wrong)) << wrong;
}

TEST(KeyEvent, TierRawValuesAreBounded) {
  EXPECT_EQ(tier(3), Tier::slam);
  for (const int64_t wrong : {int64_t{-1}, int64_t{4}, INT64_MAX})
    EXPECT_FALSE(tier(wrong));
}

}  // namespace
}  // namespace tobrin
