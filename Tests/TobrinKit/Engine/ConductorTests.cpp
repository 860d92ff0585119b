#include "Engine/Conductor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "Base/Log.h"
#include "Base/MachTime.h"
#include "Base/MouseButton.h"
#include "Base/VirtualQueue.h"
#include "Engine/TypingScript.h"
#include "Force/MotionReport.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackLoader.h"
#include "PlainVoicing.h"
#include "Support/HandDrivenDevice.h"
#include "Support/ScriptedMotionSource.h"
#include "Support/TempFolder.h"
#include "Support/TestPack.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

constexpr uint16_t centredKey = 200;  // no column, so both channels are equal
constexpr double stalledMs = 400;     // after which no fade is waited for

class ConductorTest : public ::testing::Test {
 protected:
  ConductorTest() {
    setLogSink([](const std::string&) {});
    settings_.volume = 1;
    settings_.blendTiers = false;  // so that a level tells the tier
    conductor_->setOnForce([this](const ForceReading& reading) { readings_.push_back(reading); });
    conductor_->setPack(testing::TestPack::simple());
    apply();
  }
  ~ConductorTest() override { setLogSink(nullptr); }

  void apply(bool wakeNow = true) {
    conductor_->apply(settings_, wakeNow);
    advance(0);
  }
  void advance(double milliseconds) {
    queue_.runUntil(queue_.now() + machTicks(milliseconds));
    sensor_->awaitStart();  // and what comes of it
    queue_.runUntil(queue_.now());
  }
  void press(KeyAction action = KeyAction::down) {
    conductor_->handle({centredKey, action, queue_.now()});
    advance(0);
  }
  void release() { press(KeyAction::up); }

  /// The sensor lies still long enough to forget what it felt. Only this thread feeds it.
  void settle() {
    for (int i = 0; i < 300; ++i)
      sensor_->ingest(encodeMotionReport({0, 0, 1}), queue_.now());
    advance(1000);
  }
  /// The sensor feels a push of `g` now, 0.95 `g` of it as impact.
  void feel(double g) {
    sensor_->ingest(encodeMotionReport({0, 0, 1}), queue_.now());
    sensor_->ingest(encodeMotionReport({0, 0, 1 + g}), queue_.now());
  }
  /// The level that plays once any crossfade has ended.
  float level() { return device_->render(256).first.back(); }
  void finishSounds() { device_->render(4800); }
  /// What the device plays in so many blocks, each of which takes its time.
  std::vector<float> listen(int blocks) {
    std::vector<float> heard;
    for (; blocks > 0; --blocks) {
      std::ranges::copy(device_->render(256).first, std::back_inserter(heard));
      advance(256 / 48.0);
    }
    return heard;
  }

  EngineSettings settings_;
  std::vector<ForceReading> readings_;
  std::shared_ptr<testing::HandDrivenDevice::Controls> device_ =
      std::make_shared<testing::HandDrivenDevice::Controls>();
  testing::MotionScript motion_;
  std::unique_ptr<ForceSensor> madeSensor_ =
      std::make_unique<ForceSensor>(std::make_unique<testing::ScriptedMotionSource>(motion_));
  ForceSensor* const sensor_ = madeSensor_.get();
  VirtualQueue queue_{Conductor::queueName, machTicks(1e6)};
  std::unique_ptr<Conductor> conductor_ = std::make_unique<Conductor>(
      queue_, std::make_unique<AudioOutput>(std::make_unique<testing::HandDrivenDevice>(device_)),
      std::move(madeSensor_));
};

/// Every key in every way to play it, whole: takes, levels, lengths, pitch, places, order of draws.
TEST_F(ConductorTest, PlaysEveryKeyAsItMustSound) {
  const auto settings = [](bool sensing, Tier tier, bool blend, float spatial) {
    return EngineSettings{.volume = 0.6f,
                          .forceSensing = sensing,
                          .fixedTier = tier,
                          .blendTiers = blend,
                          .spatial = spatial};
  };
  SplitMix64 rng(0x74726962);
  conductor_->setPack(testing::PlainVoicing::pack());
  const double soundless = 20'000;  // ms, after which the sensor has no sample of before
  for (const EngineSettings& way :
       {settings(false, Tier::soft, true, 0.5f), settings(false, Tier::slam, true, 0.5f),
        settings(false, Tier::medium, false, 1), settings(true, Tier::slam, true, 0.25f),
        settings(true, Tier::slam, false, 0)}) {
    conductor_->apply(way, true);
    advance(soundless);
    testing::PlainVoicing plain(way);
    plain.mixer.setMaster(0.6f);
    finishSounds();
    plain.mixer.render(std::vector<double>(64).data(), nullptr, 64);
    for (uint16_t code = 0; code < 130; ++code) {
      SCOPED_TRACE(way.toJson() + " key " + std::to_string(code));
      conductor_->handle({code, KeyAction::down, queue_.now()});
      advance(20);
      if (way.forceSensing) {
        const double gain = 1 + 0.06 * rng.signedUnit();
        plain.press(code, 1, 1, gain, 1 + 0.004 * rng.signedUnit());
      } else {
        const double position = static_cast<double>(way.fixedTier) + 0.3 * rng.signedUnit();
        plain.press(code, position, 1);
        ASSERT_EQ(readings_.back(),
                  (ForceReading{.code = code,
                                .position = static_cast<float>(std::clamp(position, 0.0, 3.0))}));
      }
      for (const bool released : {false, true}) {
        const auto [left, right] = device_->render(2200);
        ASSERT_NO_FATAL_FAILURE(plain.expectSound(left, right)) << released;
        if (released) break;
        conductor_->handle({code, KeyAction::up, queue_.now()});
        advance(0);
        plain.release(code, 1, 1 + 0.05 * rng.signedUnit());
      }
    }
  }
}

/// The input of the mixer's limiter, worked out from its output.
double unlimited(double heard) {
  const double above = (std::abs(heard) - 0.8) / 0.2;
  return above <= 0 ? heard : std::copysign(0.8 + 0.2 * above / (1 - above), heard);
}

// What the limiter adds is not heard 30 dB below a click. The hardest strokes may have more of it
// without a boost, and get hardly more by one; without bounds it would be 14 dB below them.
TEST_F(ConductorTest, ABoostMakesQuietKeysTwiceAsLoudAndDistortsNone) {
  const testing::TempFolder folder;
  generatePack(SynthProfile::dome(), folder.path());  // the one that is limited most
  conductor_->setPack(loadPack(discoverPacks(folder.path(), false).at(0), 48000));
  settings_ = {.volume = 1, .forceSensing = false};
  constexpr double wordsAMinute = 160;
  const auto script = typingScript("The quick brown fox jumps over the lazy dog", wordsAMinute, 3,
                                   [](std::size_t, std::size_t) { return 0.0F; });
  struct Energies {
    double sound = 0, added = 0;
  };
  const auto typed = [&](Tier strength, float boost) {
    settings_.fixedTier = strength;
    conductor_->setBoost(boost);
    apply();
    Energies found;
    double frames = 0;
    for (const ScriptedKey& key : script) {
      for (; frames < key.time * 48000; frames += 64) {
        for (const float heard : device_->render(64).first) {
          const double given = unlimited(static_cast<double>(heard));
          found.sound += given * given;
          found.added += std::pow(given - static_cast<double>(heard), 2);
        }
      }
      conductor_->handle({key.code, key.action, queue_.now()});
      advance(0);
    }
    return found;
  };
  for (const auto& [strength, least] : {std::pair(Tier::soft, 5.5), std::pair(Tier::medium, 5.5),
                                        std::pair(Tier::hard, 4.0), std::pair(Tier::slam, 0.0)}) {
    const Energies plain = typed(strength, 1), boosted = typed(strength, 2);
    EXPECT_GT(10 * std::log10(boosted.sound / plain.sound), least) << index(strength);
    const double allowed = std::max(0.001, 1.6 * plain.added / plain.sound);  // -30 dB, 2 dB more
    EXPECT_LT(boosted.added / boosted.sound, allowed) << index(strength);
  }
}

TEST_F(ConductorTest, FollowsTheImpactAt4And10And16Milliseconds) {
  conductor_->setPack(testing::TestPack::simple(48000));
  settle();
  press();
  advance(4);
  EXPECT_NEAR(level(), 0.2f, 0.015f) << "no sample yet: a typical stroke";
  advance(3);
  feel(0.045f);
  advance(2.9);
  EXPECT_NEAR(level(), 0.2f, 0.015f);
  advance(0.1);
  EXPECT_NEAR(level(), 0.3f, 0.02f) << "at 10 ms";
  advance(4);
  feel(0.1f);  // the window's last moment
  advance(1);
  feel(0.9f);  // beyond it
  EXPECT_TRUE(readings_.empty());
  advance(1);
  EXPECT_NEAR(level(), 0.4f * 1.0f * 1.08f, 0.04f) << "at 16 ms, with edge gain";
  ASSERT_EQ(readings_.size(), 1u);
  EXPECT_TRUE(readings_[0].sensed);
  EXPECT_NEAR(readings_[0].peak, 0.095f, 0.0025);
  EXPECT_EQ(readings_[0].position, 3);
}

TEST_F(ConductorTest, AMouseClicksUnfeltAndOnlyWhereThePackHasASoundForIt) {
  settings_.fixedTier = Tier::hard;
  apply();
  const auto click = [this](MouseButton button, KeyAction action = KeyAction::down) {
    settle();
    finishSounds();
    conductor_->handle({codeOf(button), action, queue_.now()});
    feel(0.9f);
    advance(20);
    return level();
  };
  EXPECT_EQ(click(MouseButton::left), 0) << "no key lends it one";
  conductor_->setPack(testing::TestPack()
                          .down(KeyGroup::alpha, Tier::medium, 0.1f)
                          .down(KeyGroup::mouse, Tier::soft, 0.2f)
                          .down(KeyGroup::mouse, Tier::hard, 0.3f)
                          .up(KeyGroup::mouse, 0.05f)
                          .make());
  EXPECT_NEAR(click(MouseButton::right), 0.3f, 1e-4f);
  EXPECT_NEAR(click(MouseButton::right, KeyAction::up), 0.04f, 0.003f);
  EXPECT_NEAR(click(MouseButton::wheel), 0.2f, 1e-4f) << "softly";
  EXPECT_TRUE(readings_.empty()) << "it says nothing of how hard keys are struck";
}

TEST_F(ConductorTest, WhatIsNoImpactChangesNothing) {
  press();
  const float before = level();
  advance(1);
  sensor_->ingest(encodeMotionReport({0, 0, 1}), queue_.now());
  sensor_->ingest(encodeMotionReport({0, 0, 1.006}), queue_.now());
  advance(20);
  EXPECT_EQ(device_->render(100).first.back(), before);
  ASSERT_EQ(readings_.size(), 1u);
  EXPECT_EQ(readings_[0],
            (ForceReading{.code = centredKey, .position = 1, .peak = readings_[0].peak}));
}

TEST_F(ConductorTest, LearnsTheTypicalStrokeAndForgetsIt) {
  const auto strike = [this](double g) {
    settle();
    press();
    advance(2);
    feel(g);
    advance(20);
    finishSounds();
    return readings_.back();
  };
  EXPECT_EQ(strike(0.3).position, 3);
  EXPECT_NEAR(strike(0.001).position, 1.2f, 1e-5) << "10 % of the way";
  for (int i = 0; i < 11; ++i)
    strike(0.05);
  EXPECT_NEAR(strike(0.05).relative, 1, 1e-5) << "the median of 12";
  conductor_->resetCalibration();
  EXPECT_EQ(strike(0.001).position, 1);
  EXPECT_GT(strike(0.05).relative, 2);
}

TEST_F(ConductorTest, ReleasesAreAsLoudAsTheirPress) {
  // Impact, time held, loudness.
  const std::tuple<double, double, float> rows[] = {
      {0.3, 50, 1.3f}, {0.3, 8, 1}, {0.004, 50, 0.5f}, {0, 50, 1}};
  for (const auto& [g, heldMs, loudness] : rows) {
    settle();
    press();
    advance(1);
    if (g > 0) feel(g);
    advance(heldMs - 1);
    finishSounds();
    release();
    EXPECT_NEAR(level(), 0.04f * loudness, 0.04f * loudness * 0.051f) << g << " g, " << heldMs;
    finishSounds();
    advance(16);
  }
  press();
  feel(0.3);
  advance(8);
  release();
  press();
  advance(9);  // the first press is measured now
  finishSounds();
  release();
  EXPECT_NEAR(level(), 0.04f, 0.0021f) << "leaves nothing behind for the next press";
  finishSounds();
  settings_.releaseSounds = false;
  apply();
  release();
  EXPECT_EQ(level(), 0);
}

TEST_F(ConductorTest, RestsAfterThreeMinutesWithoutAKeyAndWakesForTheNext) {
  advance(60'000);
  press();
  advance(180'000);
  EXPECT_TRUE(device_->running);
  advance(15'000 + stalledMs);
  EXPECT_FALSE(device_->running);
  EXPECT_FALSE(sensor_->isRunning());
  EXPECT_FALSE(queue_.nextDue()) << "nothing wakes the process up";
  release();
  EXPECT_FALSE(device_->running);

  press();
  EXPECT_TRUE(device_->running);
  EXPECT_TRUE(sensor_->isRunning());
  const auto block = device_->render(1024).first;
  EXPECT_NEAR(static_cast<double>(std::ranges::count(block, 0.0f)), 544, 7)
      << "whole, give or take its pitch";
}

TEST_F(ConductorTest, SettingsStartAndStopWhatTheySay) {
  for (const bool on : {false, true}) {
    settings_.forceSensing = on;
    apply(false);
    EXPECT_EQ(sensor_->isRunning(), on);
  }
  press();
  settings_.enabled = false;
  apply();
  finishSounds();
  advance(stalledMs);
  EXPECT_FALSE(device_->running);
  EXPECT_FALSE(sensor_->isRunning());
  press();
  release();
  conductor_->audition();
  advance(30'000);
  EXPECT_FALSE(queue_.nextDue()) << "nothing wakes the process up";
  EXPECT_EQ(conductor_->audio().startedVoices(), 1u);
  settings_.enabled = true;
  apply(false);
  EXPECT_FALSE(device_->running);
  apply(true);
  EXPECT_TRUE(device_->running);
  const int starts = device_->starts;
  conductor_->systemDidWake();
  advance(0);
  EXPECT_EQ(device_->starts, starts + 1);
  EXPECT_EQ(motion_.opens, 4);
}

TEST_F(ConductorTest, FadesOutBeforeItPausesAndPlaysAKeyThatComesMeanwhile) {
  conductor_->setPack(testing::TestPack::simple(96000));
  const auto turn = [this](bool on) {
    settings_.enabled = on;
    apply();
  };
  press();
  auto heard = listen(4);
  turn(false);
  std::ranges::copy(listen(4), std::back_inserter(heard));  // 21 ms
  EXPECT_FALSE(device_->running);
  for (std::size_t i = 1; i < heard.size(); ++i)
    ASSERT_LE(heard[i - 1] - heard[i], 0.2f / 288 * 2.5f) << "a step at frame " << i;
  EXPECT_EQ(heard.back(), 0);

  turn(true);
  press();
  listen(4);
  turn(false);
  listen(1);
  turn(true);
  press();
  listen(20);
  EXPECT_TRUE(device_->running) << "the pause was called off";
  EXPECT_GT(level(), 0);

  turn(false);
  EXPECT_TRUE(device_->running) << "nobody waits for a stalled device";
  advance(stalledMs);
  EXPECT_FALSE(device_->running);
  turn(true);
  EXPECT_EQ(level(), 0) << "nor is anything left of it";
}

TEST_F(ConductorTest, KeepsAnOldPackUntilItsFadeHasEnded) {
  const auto swap = [this] {
    auto pack = testing::TestPack::simple(480'000);
    const std::weak_ptr<const LoadedPack> watch = pack;
    conductor_->setPack(std::move(pack));
    press();
    return watch;
  };
  const auto first = swap();
  const auto second = swap();
  const auto third = swap();
  finishSounds();
  EXPECT_EQ(conductor_->audio().activeVoices(), 1u);
  device_->render(24'000 - 4800 - 1);
  advance(2000);
  EXPECT_FALSE(first.expired() || second.expired()) << "half a second was not played yet";
  device_->render(1);
  advance(1990);
  EXPECT_FALSE(first.expired() || second.expired());
  advance(10);
  EXPECT_TRUE(first.expired() && second.expired());

  conductor_->setPack(nullptr);
  advance(10'000);
  EXPECT_FALSE(third.expired()) << "a stalled output has not faded";
  settings_.enabled = false;
  apply();
  advance(2'000);
  EXPECT_TRUE(third.expired());
}

TEST_F(ConductorTest, GoesOnWithoutAnOutputAndSavesNothingUpForIt) {
  settings_.forceSensing = false;
  apply();
  device_->lose("no server");
  const int starts = device_->starts;
  for (int i = 0; i < 50; ++i) {
    press();
    advance(50);
  }
  EXPECT_EQ(readings_.size(), 50u);
  EXPECT_EQ(device_->starts - starts, 3) << "a slow refusal must not hold every key up";
  device_->recover();
  EXPECT_EQ(level(), 0);
  for (int i = 0; i < 600; ++i)
    press();
  EXPECT_EQ(readings_.size(), 50u + TB_RING_CAPACITY) << "what does not sound is not shown";
  EXPECT_EQ(conductor_->audio().droppedCommands(), 600u - TB_RING_CAPACITY);
  finishSounds();
  press();
  EXPECT_GT(level(), 0);
}

TEST_F(ConductorTest, AnAuditionKeepsItAwakeAndEndsTheOneBefore) {
  constexpr int phraseBlocks = 563;  // 3 s, of which it takes 2
  constexpr uint64_t phraseVoices = 2 * 16;
  const auto auditioned = [this](int blocks) {
    const uint64_t before = conductor_->audio().startedVoices();
    conductor_->audition();
    advance(0);
    listen(blocks);
    return conductor_->audio().startedVoices() - before;
  };
  advance(200'000);
  EXPECT_FALSE(device_->running);
  EXPECT_EQ(auditioned(phraseBlocks), phraseVoices);
  const int pauses = device_->pauses;
  advance(11'500);
  EXPECT_EQ(auditioned(phraseBlocks), phraseVoices);
  EXPECT_EQ(device_->pauses, pauses) << "after a look for idleness";
  const uint64_t begun = auditioned(20);
  EXPECT_LT(begun, 5u);
  EXPECT_EQ(auditioned(phraseBlocks), phraseVoices) << "twice at once";
  auditioned(20);
  conductor_->setPack(testing::TestPack::simple());
  const uint64_t before = conductor_->audio().startedVoices();
  advance(0);
  listen(phraseBlocks);
  EXPECT_EQ(conductor_->audio().startedVoices(), before) << "another pack";
}

TEST_F(ConductorTest, DropsWhatAStalledOutputDoesNotPlayInTime) {
  conductor_->setPack(testing::TestPack::simple(480'000));
  press();
  listen(400);
  for (const double stallMs : {60'000.0, 185.0, 183.0}) {
    for (int i = 0; i < 16; ++i) {
      press(i % 2 == 0 ? KeyAction::down : KeyAction::up);
      advance(1);
    }
    advance(stallMs);
    EXPECT_EQ(level() > 0, stallMs < 184) << "neither keys nor the rest of an old sound";
  }
  EXPECT_EQ(conductor_->audio().startedVoices(), 1u + 16u);
  for (const double stallMs : {1001.0, 999.0}) {
    settings_.enabled = false;
    apply();
    advance(stalledMs);
    settings_.enabled = true;
    apply();
    press();
    advance(stallMs);
    EXPECT_EQ(level() > 0, stallMs < 1000) << "a card that wakes up may take longer";
  }
}

TEST_F(ConductorTest, PlaysTheFixedStrengthWhileTheSensorDoesNotRunAndSaysWhy) {
  settings_.fixedTier = Tier::slam;
  settings_.forceSensing = false;
  apply();
  std::vector<std::string> problems;
  conductor_->setOnSensorProblem([&](const std::string& problem) { problems.push_back(problem); });
  motion_.work(false);
  settings_.forceSensing = true;
  apply();
  const std::vector<std::string> told = {"the test says no"};
  EXPECT_EQ(problems, told);
  for (int i = 0; i < 40; ++i) {
    press();
    EXPECT_NEAR(level(), 0.4f, 0.001f) << "key " << i;
    finishSounds();
    advance(300);
  }
  EXPECT_EQ(readings_.size(), 40u);
  EXPECT_EQ(motion_.opens, 1 + 4) << "tried again ever less often, but not for a key";
  for (const auto& [steps, opens] : {std::pair(229, 6), std::pair(11, 7)}) {
    for (int step = 0; step < steps; ++step)
      advance(100);
    EXPECT_EQ(motion_.opens, 1 + opens) << "every 10 s in the end";
  }
  EXPECT_EQ(problems, told);

  motion_.work(true);
  advance(10'000);
  EXPECT_EQ(problems.back(), "");
  press();
  EXPECT_NEAR(level(), 0.2f, 0.015f) << "a typical stroke";
  advance(20);
  EXPECT_EQ(readings_.size(), 40u) << "no sample, no reading";
  motion_.work(false);  // it vanished, and its source waits for it
  finishSounds();
  press();
  EXPECT_NEAR(level(), 0.4f, 0.001f);
  EXPECT_EQ(problems.back(), told.back());
}

}  // namespace
}  // namespace tobrin
