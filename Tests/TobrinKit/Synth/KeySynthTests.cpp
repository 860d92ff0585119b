#include "Synth/KeySynth.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Synth/Biquad.h"

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
    EXPECT_NEAR(energy(sound.left), row.leftEnergy, 1e-7 * row.leftEnergy);
    EXPECT_NEAR(energy(sound.right), row.rightEnergy, 1e-7 * row.rightEnergy);
    EXPECT_EQ(sound.left.back(), 0);
  }
}

TEST(Biquad, ACornerBeyondHalfTheRateLeavesItStable) {
  Biquad filter = Biquad::lowpass(30'000, 0.7, 48'000);
  double last = filter.process(1);
  for (int i = 0; i < 1000; ++i)
    last = filter.process(0);
  EXPECT_LT(std::abs(last), 1e-6);
}

TEST(KeySynth, LeavesOutWhatLiesTooHighToRing) {
  SynthProfile with = SynthProfile::cream();
  SynthProfile without = with;
  with.ping = {{.frequency = 30'000, .decay = 0.02, .amplitude = 1}};
  with.thump.frequency = 30'000;
  without.thump.amplitude = 0;
  const auto press = [](const SynthProfile& profile) {
    return KeySynth::render(KeyGroup::alpha, Tier::hard, 0, profile).left;
  };
  EXPECT_EQ(press(with), press(without));
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
