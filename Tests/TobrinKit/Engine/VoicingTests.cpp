#include "Engine/Voicing.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "Engine/PlaybackGate.h"
#include "Support/TestPack.h"

namespace tobrin {
namespace {

TEST(Voicing, KeysKeepTheirTakeAndPitchAndSpreadOverThem) {
  testing::TestPack builder;
  for (int take = 0; take < 5; ++take)
    builder.down(KeyGroup::alpha, Tier::medium, 0.1f, 8);
  const auto pack = builder.make();
  std::set<std::size_t> takes;
  std::set<float> pitches;
  for (uint16_t code = 0; code < 50; ++code) {
    const std::size_t take = Voicing::variant(code, *pack, KeyGroup::alpha);
    EXPECT_EQ(Voicing::variant(code, *pack, KeyGroup::alpha), take);
    EXPECT_LT(take, 5u);
    takes.insert(take);
    pitches.insert(Voicing::detune(code));
    EXPECT_NEAR(Voicing::detune(code), 1, 0.012001);
  }
  EXPECT_EQ(takes.size(), 5u);
  EXPECT_GT(pitches.size(), 45u);
  // The first output for seed 0 is 0xE220A8397B1DCDAF.
  EXPECT_EQ(Voicing::variant(0, *pack, KeyGroup::alpha), 0xE220A8397B1DCDAFu % 5);
  EXPECT_FLOAT_EQ(Voicing::detune(0),
                  static_cast<float>(1 + 0.012 * (0xE220A8397Bu % 2001 - 1000.0) / 1000));
}

TEST(Voicing, PanFollowsColumnAndWidth) {
  EngineSettings wide;
  wide.spatial = 1;
  EXPECT_FLOAT_EQ(Voicing::pan(53, wide), (0.5f / 15 - 0.5f) * 2 * 0.6f);
  EXPECT_FLOAT_EQ(Voicing::pan(124, wide), (14.9f / 15 - 0.5f) * 2 * 0.6f);
  for (const uint16_t centred : std::initializer_list<uint16_t>{49, 10, 200, 65535})
    EXPECT_EQ(Voicing::pan(centred, wide), 0) << centred;
  EngineSettings narrow;
  narrow.spatial = 0;
  EXPECT_EQ(Voicing::pan(53, narrow), 0);
}

TEST(Voicing, WeightsCombineTierPackEdgeAndVariation) {
  const std::vector<float> gains = {1, 2};
  const auto two = Voicing::weights(1.0f, 1.0f, gains, true, 0.5f);
  EXPECT_EQ(two, (std::array<float, 4>{0, 1, 0, 0}));
  const auto loudest = Voicing::weights(3.0f, 16.0f, std::vector<float>(4, 1.0f), true, 1);
  EXPECT_FLOAT_EQ(loudest[3], 1.25f);
  for (const auto& [strength, expected] : {std::pair{0.0f, 0.5f}, {1.0f, 1.0f}, {100.0f, 1.3f}})
    EXPECT_FLOAT_EQ(Voicing::releaseGain(strength), expected);
}

TEST(PlaybackGate, TheUsersSwitchComesBeforeACall) {
  using State = PlaybackGate::State;
  const struct {
    PlaybackGate gate;
    State state;
  } rows[] = {{{false, true, true}, State::off},
              {{true, true, true}, State::pausedForCall},
              {{true, false, true}, State::playing},
              {{true, true, false}, State::playing}};
  for (const auto& row : rows)
    EXPECT_EQ(row.gate.state(), row.state);
}

}  // namespace
}  // namespace tobrin
