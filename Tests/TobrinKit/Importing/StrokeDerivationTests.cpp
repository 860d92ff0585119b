#include "Importing/StrokeDerivation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Base/Biquad.h"
#include "Building/TakeCutter.h"
#include "Synth/KeySynth.h"

namespace tobrin {
namespace {

using Take = RecordedTake;

double decibels(double power) {
  return 10 * std::log10(power);
}

/// What is compared: level, share of the sound above 2 kHz against that below, and how much of it
/// comes in the first 4 ms; all in dB.
struct Measure {
  explicit Measure(const Take& take) : level(20 * std::log10(takeLevel(take, 48000))) {
    Biquad high = Biquad::highpass(2000, 0.7071, 48000);
    Biquad low = Biquad::lowpass(2000, 0.7071, 48000);
    double above = 0, below = 0, first = 0, rest = 0;
    for (std::size_t i = 0; i < take.left.size(); ++i) {
      const auto x = static_cast<double>(take.left[i]);
      above += std::pow(high.process(x), 2);
      below += std::pow(low.process(x), 2);
      (i < 192 ? first : rest) += x * x;
    }
    tilt = decibels(above / below);
    attack = decibels(first / rest);
  }
  double level;
  double tilt = 0;
  double attack = 0;
};

/// How much brighter and quicker a take is than another, for each dB that it is louder.
struct Slope {
  Slope(const Take& medium, const Take& other) {
    const Measure a(medium), b(other);
    tilt = (b.tilt - a.tilt) / (b.level - a.level);
    attack = (b.attack - a.attack) / (b.level - a.level);
  }
  double tilt;
  double attack;
};

Take synthesized(const SynthProfile& profile, Tier tier, uint64_t variant) {
  auto sound = renderKey(KeyGroup::alpha, tier, variant, profile);
  Take take{std::move(sound.left), std::move(sound.right)};
  constexpr float quiet = 0.1f;  // as is: the loudest would clip
  for (auto* channel : {&take.left, &take.right})
    for (float& sample : *channel)
      sample *= quiet;
  take.level = takeLevel(take, 48000);
  return take;
}

TEST(StrokeDerivation, MakesStrokesThatGrowLouderBrighterAndQuickerAsThoseOfModelledKeysDo) {
  for (const Tier tier : {Tier::soft, Tier::hard, Tier::slam}) {
    std::vector<double> modelled, derived;
    for (const SynthProfile& profile : SynthProfile::starterPacks()) {
      for (uint64_t variant = 0; variant < 6; ++variant) {
        const Take medium = synthesized(profile, Tier::medium, variant);
        const Take made = derivedStroke(medium, tier);
        const Slope slope(medium, made);
        EXPECT_NEAR(Measure(made).level - Measure(medium).level, tierLevelDb(tier), 0.1);
        EXPECT_GT(slope.attack, 0) << profile.id;
        EXPECT_GT(slope.tilt, 0.05) << profile.id;
        derived.push_back(slope.tilt);
        modelled.push_back(Slope(medium, synthesized(profile, tier, variant)).tilt);
      }
    }
    const auto [least, most] = std::ranges::minmax(modelled);
    const auto [leastDerived, mostDerived] = std::ranges::minmax(derived);
    EXPECT_LT(least, leastDerived) << name(tier);
    EXPECT_GT(most, mostDerived) << name(tier);
  }
}

}  // namespace
}  // namespace tobrin
