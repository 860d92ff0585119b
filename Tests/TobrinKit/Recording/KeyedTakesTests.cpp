#include "Recording/KeyedTakes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Base/PackError.h"
#include "KeyedScore.h"
#include "Packs/PackLoader.h"
#include "Recording/KeyedPackBuilder.h"
#include "Recording/SoundRises.h"
#include "Support/Failure.h"
#include "Support/KeptText.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using testing::line;

TEST(KeyedTakes, EverySoundGoesToItsKey) {
  const KeyedCondition conditions[] = {
      {.name = "worst",
       .delay = -0.05,
       .drift = 200e-6,
       .signalDb = 20,
       .interval = 0.1,
       .seconds = 40},
      {.name = "late click", .profile = &SynthProfile::click(), .delay = 0.15, .seconds = 30},
      {.name = "late strike",
       .profile = &SynthProfile::typewriter(),
       .interval = 0.25,
       .seconds = 30},
      {.name = "loud releases", .releaseDb = 1, .seconds = 30},
      {.name = "knocks", .knocks = 1, .seconds = 30},
  };
  for (const KeyedCondition& condition : conditions) {
    SCOPED_TRACE(condition.name);
    const ComposedKeys composed = composeKeys(condition);
    const KeyedTakes takes = findKeyedTakes(composed.recording);
    const KeyedScore score = scoreOf(composed, takes);
    // The strike is what most sounds have in common; a typewriter's comes 18 ms after its key's
    // touch.
    const double lead = condition.profile == &SynthProfile::typewriter() ? 0.018 : 0;
    EXPECT_NEAR(takes.fit.delay, condition.delay + lead, 0.003);
    EXPECT_NEAR(takes.fit.drift, condition.drift, 40e-6);
    EXPECT_GE(score.presses, 0.995);
    EXPECT_GE(score.releases, 0.99);
    EXPECT_EQ(score.wrong, 0u);
    EXPECT_LT(score.onsetErrorMs, 1.5);
    EXPECT_GE(score.good, takes.sounds.size() / 2 - 50);
    EXPECT_LE(score.spoiled, score.good / 20);
  }
}

std::string describe(const std::vector<RecordedTake>& takes) {
  std::string text;
  for (const RecordedTake& take : takes) {
    double sum = 0;
    for (const float x : take.left)
      sum += static_cast<double>(std::abs(x));
    text += line(" %zu %.4g %.4g", take.left.size(), static_cast<double>(take.level), sum);
  }
  return text + "\n";
}

std::string describe(const SoundRises& rises) {
  std::string text = line("floor %.5g:", static_cast<double>(rises.floor));
  for (const SoundRise& rise : rises.rises)
    text += line(" %zu %.4g %.2f", rise.sample, static_cast<double>(rise.evidence),
                 static_cast<double>(rise.levelDb));
  return text + "\n";
}

std::string describe(const KeyedTakes& takes) {
  std::string text =
      takes.report + "\n" +
      line("delay %.7f, drift %.4e, lag %.7f, spread %.7f, lowered %.4f dB\n", takes.fit.delay,
           takes.fit.drift, takes.fit.releaseLag, takes.fit.spread, takes.noiseLoweredDb);
  for (const auto& [fate, hit] : takes.sounds)
    text += line("%s %zu %.4g %.4g %.3f %.1f %.3g %zu\n", std::string(nameOf(fate)).c_str(),
                 hit.onset, static_cast<double>(hit.peak), static_cast<double>(hit.energy),
                 static_cast<double>(hit.brightness), hit.decayMs,
                 static_cast<double>(hit.preActivity), hit.gapAfter);
  for (const auto& [group, tiers] : takes.down)
    for (const auto& [tier, some] : tiers)
      text += std::string(rawValue(group)) + " " + std::string(name(tier)) + ":" + describe(some);
  for (const auto& [group, some] : takes.up)
    text += std::string(rawValue(group)) + " up:" + describe(some);
  return text;
}

TEST(KeyedTakes, EverySoundAndTakeIsAsItWas) {
  const SynthProfile& late = SynthProfile::typewriter();
  std::string text;
  for (const KeyedCondition& condition :
       {KeyedCondition{.delay = -0.05, .drift = 200e-6, .interval = 0.11, .seconds = 13},
        {.signalDb = 25, .interval = 0.3, .releaseDb = -6, .knocks = 0.3, .seconds = 16},
        {.interval = 0.25, .knocks = 2, .seconds = 12},
        {.profile = &late,
        .delay = 0.1,
        .drift = -3e-4,
        .interval = 0.25,
        .speech = 0.4,
        .seconds = 16}}) {
    KeyedRecording recording = composeKeys(condition).recording;
    for (float& x : recording.samples)
      x = std::clamp(3 * x, -1.0f, 1.0f);
    text += describe(findRises(recording.samples, recording.rate));
    text += describe(findKeyedTakes(recording));
  }
  testing::expectKeptText(text, "TobrinKit/Recording/keyed-takes.txt");
}

TEST(KeyedTakes, WhatIsNoKeyIsLeftOut) {
  ComposedKeys composed = composeKeys({.unheard = 0, .speech = 0.5, .seconds = 30});
  auto& recording = composed.recording;
  const auto clippedKey =
      static_cast<std::size_t>(std::find_if(composed.truths.begin() + 40, composed.truths.end(),
                                            [](const auto& truth) { return truth.isSeparable; }) -
                               composed.truths.begin());
  recording.samples[*composed.truths[clippedKey].onset + 200] = 1;
  const KeyedTakes takes = findKeyedTakes(recording);
  EXPECT_EQ(takes.sounds[clippedKey].fate, KeyFate::clipped);
  std::size_t good = 0, spoken = 0, clear = 0;
  for (std::size_t key = 0; key < takes.sounds.size(); ++key) {
    const bool isSpoken = composed.isSpokenOver(key);
    const bool isGood = takes.sounds[key].fate == KeyFate::good;
    spoken += isSpoken ? 1 : 0;
    good += isSpoken && isGood ? 1 : 0;
    clear += !isSpoken && isGood ? 1 : 0;
  }
  EXPECT_GT(spoken, 50u);
  EXPECT_LE(good, spoken / 10);
  EXPECT_GE(clear, (takes.sounds.size() - spoken) / 2);

  for (RecordedKey& key : recording.keys)  // a recording of something else
    key.time += key.time % 700'000'000;
  std::sort(recording.keys.begin(), recording.keys.end(),
            [](const auto& a, const auto& b) { return a.time < b.time; });
  const KeyedTakes none = findKeyedTakes(recording);
  EXPECT_FALSE(none.fit.isKnown);
  EXPECT_TRUE(none.down.empty() && none.up.empty());
  EXPECT_EQ(testing::failureOf([&] { buildKeyedPack(none, {.id = "mine"}, "/nowhere/x"); }),
            "Pack mine has no usable sounds");
}

/// Loudness of each tier's takes of letters, lowest tier first.
std::vector<float> letterLevels(const KeyedTakes& takes) {
  std::vector<float> levels;
  for (const auto& [tier, list] : takes.down.at(KeyGroup::alpha)) {
    for (const RecordedTake& take : list)
      EXPECT_GE(take.left.size(), 2160u) << name(tier);
    levels.push_back(list[list.size() / 2].level);
  }
  return levels;
}

TEST(KeyedTakes, TiersFollowForceWhereItIsMeasured) {
  ComposedKeys composed = composeKeys({.seconds = 25});
  const KeyedTakes byEnergy = findKeyedTakes(composed.recording);
  const auto levels = letterLevels(byEnergy);
  EXPECT_EQ(levels.size(), tierCount);
  EXPECT_TRUE(std::is_sorted(levels.begin(), levels.end()));
  // Each tier's takes come seven tenths of the way to the level that the tier has in every pack.
  std::vector<float> energies;
  for (std::size_t key = 0; key < byEnergy.sounds.size(); ++key) {
    const RecordedKey& each = composed.recording.keys[key];
    if (each.group == KeyGroup::alpha && each.action == KeyAction::down &&
        byEnergy.sounds[key].fate == KeyFate::good)
      energies.push_back(byEnergy.sounds[key].hit.energy);
  }
  const float struck = percentile(energies, 0.96) / percentile(energies, 0.19);
  const float levelled = std::pow(struck, 0.3f) * std::pow(2 / 0.55f, 0.7f);
  EXPECT_NEAR(levels.back() / levels.front(), levelled, 0.08f * levelled);
  for (std::size_t key = 0; key < composed.recording.keys.size(); ++key) {
    if (composed.recording.keys[key].action == KeyAction::down)
      composed.recording.keys[key].force = key % 4 < 2 ? 0.4f : 2.6f;
  }
  const auto down = findKeyedTakes(composed.recording).down.at(KeyGroup::alpha);
  ASSERT_EQ(down.size(), 2u);
  EXPECT_EQ(down.begin()->first, Tier::soft);
  EXPECT_EQ(down.rbegin()->first, Tier::slam);
}

TEST(KeyedPack, HoldsTheTakesOfEachGroupAndBorrowsOthers) {
  ComposedKeys composed = composeKeys({.seconds = 25});
  KeyedTakes takes = findKeyedTakes(composed.recording);
  takes.down.erase(KeyGroup::enter);
  takes.up.erase(KeyGroup::enter);
  const testing::TempFolder folder;
  const auto pack = folder.path() / "mine";
  EXPECT_NEAR(buildKeyedPack(takes, {.id = "mine", .name = "Mine"}, pack), -28, 0.4);
  const auto manifest = PackManifest::read(pack);
  const auto& groups = manifest.groups;
  ASSERT_EQ(groups.size(), allKeyGroups.size());
  EXPECT_EQ(groups.at("alpha").down.at("hard").front(), "alpha-hard-1.wav");
  EXPECT_EQ(groups.at("enter"), groups.at("backspace"));
  EXPECT_NE(groups.at("space"), groups.at("alpha"));
  EXPECT_EQ(groups.at("space").up->size(), takes.up.at(KeyGroup::space).size());
  EXPECT_EQ(loadPack(PackInfo::read(pack, false), 48000)->info().name, "Mine");
}

}  // namespace
}  // namespace tobrin
