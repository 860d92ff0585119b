#include "Synth/KeySynth.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Synth/TakeSeed.h"

namespace tobrin {
namespace {

using Sound = KeySynth::Sound;

double energy(const std::vector<float>& channel) {
  double sum = 0;
  for (const double sample : channel)
    sum += sample * sample;
  return sum;
}

bool equal(const Sound& a, const Sound& b) {
  return a.left == b.left && a.right == b.right;
}

TEST(TakeSeed, IsThePublishedHashOfTheJoinedText) {
  EXPECT_EQ(takeSeed({}), 0xcbf29ce484222325u);
  EXPECT_EQ(takeSeed({"foobar"}), 0x85944171f73967e8u);
  EXPECT_EQ(takeSeed({"a", "b", ""}), takeSeed({"a|b|"}));
  EXPECT_EQ(takeSeed({"cream", "enter", "key", "1"}), 0x66b7eb5e5cd8682fu);
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
    float left100, right2000;
  };
  const Row rows[] = {
      {"plain press", SynthProfile::cream(), KeyGroup::alpha, Tier::soft, 0, 10288, 39.1108289367,
       40.0615283774, -0.173893481f, 0.074198164f},
      {"release with its click", SynthProfile::click(), KeyGroup::alpha, std::nullopt, 3, 3671,
       19.2818862166, 19.1335424039, 0.153917879f, -0.00392074604f},
      {"rattle and ping", SynthProfile::panda(), KeyGroup::space, Tier::hard, 1, 12880,
       456.883522347, 502.888208236, 0.00271176384f, -0.032863088f},
      {"long modes", SynthProfile::dome(), KeyGroup::backspace, Tier::medium, 0, 16686,
       297.312068709, 285.203994797, 0.255580992f, 0.26550892f},
      {"bottom-out and bell", SynthProfile::typewriter(), KeyGroup::enter, Tier::slam, 1, 74760,
       1556.55297052, 1475.73730546, -0.0355208367f, -0.238940462f},
      {"release without early sound", SynthProfile::typewriter(), KeyGroup::modifier, std::nullopt,
       0, 9568, 8.61204559494, 7.97754617229, -0.110155217f, -0.00959555339f},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const Sound sound = KeySynth::render(row.group, row.tier, row.variant, row.profile);
    ASSERT_EQ(sound.left.size(), row.frames);
    ASSERT_EQ(sound.right.size(), row.frames);
    EXPECT_NEAR(energy(sound.left), row.leftEnergy, 1e-7 * row.leftEnergy);
    EXPECT_NEAR(energy(sound.right), row.rightEnergy, 1e-7 * row.rightEnergy);
    EXPECT_NEAR(sound.left[100], row.left100, 1e-7f);
    EXPECT_NEAR(sound.right[2000], row.right2000, 1e-7f);
    EXPECT_EQ(sound.left.back(), 0);
    EXPECT_EQ(sound.right.back(), 0);
  }
}

TEST(KeySynth, ReleasesRepeatTheEarlySoundOnlyWhereAsked) {
  const auto release = [](const SynthProfile& profile) {
    return KeySynth::render(KeyGroup::space, std::nullopt, 0, profile);
  };
  SynthProfile silentEarly = SynthProfile::panda();
  silentEarly.early.reset();
  EXPECT_TRUE(equal(release(SynthProfile::panda()), release(silentEarly)));
  SynthProfile mutedClick = SynthProfile::click();
  mutedClick.early->onRelease = 0;
  EXPECT_FALSE(equal(release(SynthProfile::click()), release(mutedClick)));
}

TEST(KeySynth, LeavesOutWhatLiesTooHighToRing) {
  SynthProfile with = SynthProfile::cream();
  SynthProfile without = with;
  with.ping = {{.frequency = 30'000, .decay = 0.02, .amplitude = 1}};
  const auto press = [](const SynthProfile& profile) {
    return KeySynth::render(KeyGroup::alpha, Tier::hard, 0, profile);
  };
  EXPECT_TRUE(equal(press(with), press(without)));
  with.thump.frequency = 30'000;
  without.thump.amplitude = 0;
  EXPECT_TRUE(equal(press(with), press(without)));
}

TEST(KeySynth, SilenceKeepsItsLength) {
  SynthProfile silence;
  silence.id = "silence";
  silence.impact = {.center = 1000, .q = 1, .decay = 0.001, .amplitude = 0};
  silence.thump = {.frequency = 100, .decay = 0.01, .amplitude = 0};
  silence.brightness = 5000;
  const Sound sound = KeySynth::render(KeyGroup::alpha, Tier::medium, 0, silence);
  EXPECT_EQ(sound.left.size(), 15'360u);  // 0.03 s x 9 + 0.05 s
  EXPECT_EQ(energy(sound.left) + energy(sound.right), 0);
}

TEST(KeySynth, LongestSoundsEndAtTheLimit) {
  SynthProfile gong = SynthProfile::cream();
  gong.modes.push_back({.frequency = 80, .decay = 5, .amplitude = 1});
  const Sound sound = KeySynth::render(KeyGroup::space, Tier::slam, 0, gong);
  EXPECT_EQ(sound.left.size(), 76'800u);  // 1.6 s
  EXPECT_EQ(sound.left.back(), 0);
}

}  // namespace
}  // namespace tobrin
