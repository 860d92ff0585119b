#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Packs/LoadedPack.h"
#include "Support/TempFolder.h"
#include "Synth/KeySynth.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

using Sound = KeySynth::Sound;

double energy(const std::vector<float>& channel) {
  double sum = 0;
  for (const double sample : channel)
    sum += sample * sample;
  return sum;
}

/// The expected numbers come from a second implementation, written in another language from the
/// description of the sound; each row brings in parts that the others lack.
TEST(KeySynth, MakesTheSoundsItIsMeantToMake) {
  struct Row {
    const char* label;
    const SynthProfile& profile;
    KeyGroup group;
    std::optional<Tier> tier;
    uint64_t variant;
    std::size_t frames;
    double leftEnergy, rightEnergy;
  };
  const Row rows[] = {
      {"plain press", SynthProfile::cream(), KeyGroup::alpha, Tier::soft, 0, 10288, 39.1108289367,
       40.0615283774},
      {"release with its click", SynthProfile::click(), KeyGroup::alpha, std::nullopt, 3, 3671,
       19.2818862166, 19.1335424039},
      {"rattle and ping", SynthProfile::panda(), KeyGroup::space, Tier::hard, 1, 12880,
       456.883522347, 502.888208236},
      {"long modes", SynthProfile::dome(), KeyGroup::backspace, Tier::medium, 0, 16686,
       297.312068709, 285.203994797},
      {"bottom-out and bell", SynthProfile::typewriter(), KeyGroup::enter, Tier::slam, 1, 74760,
       1556.55297052, 1475.73730546},
      {"release without early sound", SynthProfile::typewriter(), KeyGroup::modifier, std::nullopt,
       0, 9568, 8.61204559494, 7.97754617229},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const Sound sound = KeySynth::render(row.group, row.tier, row.variant, row.profile);
    ASSERT_EQ(sound.left.size(), row.frames);
    EXPECT_NEAR(energy(sound.left), row.leftEnergy, 1e-10 * row.leftEnergy);
    EXPECT_NEAR(energy(sound.right), row.rightEnergy, 1e-10 * row.rightEnergy);
    EXPECT_EQ(sound.left.back(), 0);
  }
}

TEST(KeySynth, LeavesOutWhatLiesTooHighToRingAndEndsAtTheLimit) {
  SynthProfile gong = SynthProfile::cream();
  gong.modes.push_back({.frequency = 80, .decay = 5, .amplitude = 1});
  SynthProfile shrill = gong;
  shrill.ping = {{.frequency = 30'000, .decay = 0.02, .amplitude = 1}};
  shrill.thump.frequency = 30'000;
  gong.thump.amplitude = 0;
  const auto sound = KeySynth::render(KeyGroup::alpha, Tier::hard, 0, gong).left;
  EXPECT_EQ(KeySynth::render(KeyGroup::alpha, Tier::hard, 0, shrill).left, sound);
  EXPECT_EQ(sound.size(), 76'800u);  // 1.6 s
  EXPECT_EQ(sound.back(), 0);
}

namespace fs = std::filesystem;
using testing::filesIn;

TEST(PackGenerator, SameBytesOnAnyNumberOfThreadsInPlaceOfWhatWasThere) {
  const testing::TempFolder folder;
  const auto generate = [&](unsigned threads) {
    return filesIn(
        PackGenerator::generate(SynthProfile::panda(), folder.path() / "new/packs", threads));
  };
  const auto first = generate(1);
  folder.write("new/packs/panda/stale.wav", "from an earlier version");
  EXPECT_EQ(generate(3), first);
  EXPECT_EQ(first.size(), 61u);
}

TEST(PackGenerator, EveryFileIsListedOnceAndThePackLoadsAtItsLevel) {
  const testing::TempFolder folder;
  for (const SynthProfile& profile : SynthProfile::starterPacks()) {
    const fs::path packFolder = PackGenerator::generate(profile, folder.path());
    std::vector<std::string> listed = {PackManifest::fileName}, present;
    for (const auto& [groupName, group] : LoadedPack::readManifest(packFolder).groups) {
      listed.insert(listed.end(), group.up->begin(), group.up->end());
      for (const auto& [tierName, files] : group.down)
        for (const std::string& file : files) {
          EXPECT_TRUE(file.starts_with(groupName + "-" + tierName + "-")) << file;
          listed.push_back(file);
        }
    }
    for (const auto& [name, bytes] : filesIn(packFolder))
      present.push_back(name);
    std::ranges::sort(listed);
    EXPECT_EQ(listed, present);
    const auto pack = LoadedPack::load(PackInfo::read(packFolder, false), 48'000);
    EXPECT_EQ(pack->info().name, profile.name);
    EXPECT_EQ(pack->takeCount(KeyGroup::alpha, Tier::slam), 4u);
    float loudest = 0;  // of the medium letters
    for (const char* number : {"1", "2", "3", "4"}) {
      const auto file = packFolder / (std::string("alpha-medium-") + number + ".wav");
      loudest = std::max(loudest, SampleBuffer::load(file, 48'000)->peak());
    }
    EXPECT_NEAR(loudest, 0.316f, 1e-4f);
  }
}

}  // namespace
}  // namespace tobrin
