#include <gtest/gtest.h>

#include <span>
#include <vector>

#include "Support/TempFolder.h"
#include "Synth/KeySynth.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

TEST(KeySynth, LeavesOutWhatLiesTooHighToRingAndEndsAtTheLimit) {
  SynthProfile gong = SynthProfile::cream();
  gong.modes.push_back({.frequency = 80, .decay = 5, .amplitude = 1});
  SynthProfile shrill = gong;
  shrill.ping = {{.frequency = 30'000, .decay = 0.02, .amplitude = 1}};
  shrill.thump.frequency = 30'000;
  gong.thump.amplitude = 0;
  const auto sound = renderKey(KeyGroup::alpha, Tier::hard, 0, gong).left;
  EXPECT_EQ(renderKey(KeyGroup::alpha, Tier::hard, 0, shrill).left, sound);
  EXPECT_EQ(sound.size(), 76'800u);  // 1.6 s
  EXPECT_EQ(sound.back(), 0);
}

using testing::filesIn;

TEST(PackGenerator, SameBytesOnAnyNumberOfThreadsInPlaceOfWhatWasThere) {
  const testing::TempFolder folder;
  const auto generate = [&](std::span<const KeyGroup> groups, unsigned threads) {
    return filesIn(
        generatePack(SynthProfile::panda(), folder.path() / "new/packs", groups, threads));
  };
  auto first = generate(allPackGroups, 1);
  EXPECT_EQ(first.size(), 71u);
  folder.write("new/packs/panda/stale.wav", "from an earlier version");
  EXPECT_EQ(generate(allPackGroups, 3), first);
  auto keys = filesIn(generatePack(SynthProfile::panda(), folder.path()));
  std::erase_if(first, [](const auto& file) { return file.first.starts_with("mouse-"); });
  EXPECT_LT(keys.extract("pack.json").mapped().size(), first.extract("pack.json").mapped().size());
  EXPECT_EQ(keys, first) << "without a mouse";
  EXPECT_EQ(keys.size(), 60u);
}

}  // namespace
}  // namespace tobrin
