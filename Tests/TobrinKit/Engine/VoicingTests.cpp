#include "Engine/Voicing.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "Support/TestPack.h"

namespace tobrin {
namespace {

TEST(Voicing, KeysKeepTheirTakeAndPitchAndSpreadOverThem) {
  testing::TestPack builder;
  for (int take = 0; take < 5; ++take)
    builder.down(KeyGroup::alpha, Tier::medium, 0.1f, 8);
  const auto pack = builder.make();
  std::set<std::size_t> takes;
  for (uint16_t code = 0; code < 50; ++code) {
    takes.insert(Voicing::variant(code, *pack, KeyGroup::alpha));
    EXPECT_NEAR(Voicing::detune(code), 1, 0.012001);
  }
  EXPECT_EQ(takes, (std::set<std::size_t>{0, 1, 2, 3, 4}));
  // The first output for seed 0 is 0xE220A8397B1DCDAF.
  EXPECT_EQ(Voicing::variant(0, *pack, KeyGroup::alpha), 0xE220A8397B1DCDAFu % 5);
  EXPECT_FLOAT_EQ(Voicing::detune(0),
                  static_cast<float>(1 + 0.012 * (0xE220A8397Bu % 2001 - 1000.0) / 1000));
}

TEST(Voicing, PanFollowsColumnAndWidth) {
  EngineSettings wide;
  wide.spatial = 1;
  EXPECT_FLOAT_EQ(Voicing::pan(53, wide), (0.5f / 15 - 0.5f) * 2 * 0.6f);
  EXPECT_EQ(Voicing::pan(49, wide), 0);
  wide.spatial = 0;
  EXPECT_EQ(Voicing::pan(53, wide), 0);
}

TEST(Voicing, WeightsCombineTierPackEdgeAndVariation) {
  const auto two = Voicing::weights(1.0f, 1.0f, std::vector<float>{1, 2}, true, 0.5f);
  EXPECT_EQ(two, (std::array<float, 4>{0, 1, 0, 0}));
  const auto loudest = Voicing::weights(3.0f, 16.0f, std::vector<float>(4, 1.0f), true, 1);
  EXPECT_FLOAT_EQ(loudest[3], 1.25f);
}

}  // namespace
}  // namespace tobrin
