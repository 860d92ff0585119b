#include "Recording/StrokeBeginnings.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

/// A keyboard whose keys touch 10 ms before they strike; how many of ten touches are heard, and how
/// clearly, says where presses begin.
TEST(StrokeBeginnings, FollowATraitThatMostPressesShow) {
  constexpr double rate = 48000;
  constexpr std::size_t lead = 480;
  struct Row {
    std::size_t heardOfTen;
    float evidence;
    std::size_t early;  // of twenty presses
  };
  for (const Row& row : {Row{2, 55, 0}, {2, 65, 4}, {5, 20, 10}, {7, 20, 19}}) {
    std::vector<SoundRise> rises;
    std::vector<RecordedKey> keys;
    std::vector<AssignedRise> assigned;
    for (std::size_t i = 0; i < 20; ++i) {
      const std::size_t strike = 300 + 9600 * i;
      if (i > 0 && i % 10 < row.heardOfTen + (i < 10 ? 1u : 0u))
        rises.push_back({strike - lead, row.evidence, -40});
      assigned.push_back({rises.size(), false});
      rises.push_back({strike, 100, -20});
      keys.push_back({static_cast<int64_t>(200'000'000 * i), KeyAction::down, KeyGroup::alpha, 0,
                      std::nullopt});
    }
    const auto begins = strokeBeginnings(rises, keys, assigned, rate);
    std::size_t early = 0;
    for (std::size_t i = 0; i < begins.size(); ++i)
      early += *begins[i] + lead <= 300 + 9600 * i + 1 ? 1u : 0u;
    EXPECT_EQ(*begins[0], 300u) << "it would begin before the recording";
    EXPECT_EQ(early, row.early) << row.heardOfTen << " " << row.evidence;
  }
}

}  // namespace
}  // namespace tobrin
