#include "Engine/KeyMask.h"

#include <gtest/gtest.h>

#include <map>

#include "Input/KeyLayout.h"
#include "Support/TestPack.h"

namespace tobrin {
namespace {

/// How often each sound comes, of so many strokes of one key.
std::map<uint16_t, int> sounds(KeyMask& mask, uint16_t code, int strokes) {
  std::map<uint16_t, int> counts;
  for (int stroke = 0; stroke < strokes; ++stroke)
    ++counts[mask.soundOf(code)];
  return counts;
}

TEST(KeyMask, GivesEveryKeyOfAGroupAllItsSoundsEquallyOftenButNoSilentOne) {
  constexpr uint16_t silent = 0;
  KeyMask mask(1);
  const auto pack = testing::TestPack()
                        .down(KeyGroup::alpha, Tier::medium, 0.1F)
                        .key(silent, {std::vector<uint32_t>{}, {}})
                        .make();
  mask.setPack(*pack);
  EXPECT_EQ(sounds(mask, 7, 9), (std::map<uint16_t, int>{{7, 9}})) << "off";
  mask.setOn(true);
  std::map<KeyGroup, std::size_t> members;
  for (uint16_t code = 0; code < 128; ++code)
    members[keyGroupOf(code)] += keyColumn(code) && code != silent ? 1U : 0U;
  for (uint16_t code = 0; code < 130; ++code) {
    constexpr int each = 400;
    const KeyGroup group = keyGroupOf(code);
    const auto counts = sounds(mask, code, each * static_cast<int>(members[group]));
    ASSERT_EQ(counts.size(), members[group]) << code;
    for (const auto& [sound, count] : counts) {
      ASSERT_EQ(keyGroupOf(sound), group);
      ASSERT_NE(sound, silent) << "the pack keeps it silent";
      ASSERT_NEAR(count, each, 0.25 * each) << sound << " for " << code << ": it tells the key";
    }
  }
}

}  // namespace
}  // namespace tobrin
