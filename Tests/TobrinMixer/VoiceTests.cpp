// What commands do to voices, and what a mixer keeps of absurd input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "MixerFixture.h"

extern "C" bool startVoiceFromC(TBMixer* mixer, const float* samples, uint32_t frames);

namespace tobrin {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

void push(TBMixer* mixer, const TBCommand& command) {
  ASSERT_TRUE(tb_mixer_push(mixer, &command));
}

TEST(VoiceMixer, PlaysOnlyRatesWithinTwoOctaves) {
  const std::vector<float> sound(1000, 0.5F);
  const struct {
    const char* label;
    float rate;
    uint32_t frames;  // until the sound has ended
  } rows[] = {{"quarter", 0.25F, 1000}, {"above a quarter", 0.5F, 2000},
              {"three", 3, 334},        {"four", 4, 1000},
              {"none", 0, 1000},        {"no number", nan, 1000},
              {"backwards", -1, 1000},  {"endless", infinity, 1000}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.label);
    const MixerHandle mixer = makeMixer();
    TBCommand start = startOf(sound);
    start.rate = row.rate;
    push(mixer.get(), start);
    const Block block = renderBlock(mixer.get(), row.frames);
    EXPECT_NE(block.left.back(), 0);
    EXPECT_EQ(tb_mixer_active_voices(mixer.get()), 1U);
    EXPECT_EQ(renderBlock(mixer.get(), 1).left[0], 0);
    EXPECT_EQ(tb_mixer_active_voices(mixer.get()), 0U);
  }
}

TEST(VoiceMixer, PansWithConstantPowerAndSumsToMono) {
  const std::vector<float> sound(64, 0.25F);
  const float side = 0.25F * std::sqrt(2.0F);
  const struct {
    const char* label;
    float pan, left, right;
  } rows[] = {{"centre", 0, 0.25F, 0.25F}, {"left", -1, side, 0},
              {"right", 1, 0, side},       {"past left", -9, side, 0},
              {"past right", 3, 0, side},  {"no number", nan, 0.25F, 0.25F}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.label);
    const MixerHandle mixer = makeMixer();
    TBCommand start = startOf(sound);
    start.pan = row.pan;
    push(mixer.get(), start);
    const Block block = renderBlock(mixer.get(), 16);
    EXPECT_NEAR(block.left[7], row.left, 1e-7);
    EXPECT_NEAR(block.right[7], row.right, 1e-7);
    for (const bool same : {false, true}) {
      std::vector<float> mono(16);
      tb_mixer_render(mixer.get(), mono.data(), same ? mono.data() : nullptr, 16);
      EXPECT_NEAR(mono[7], (row.left + row.right) / 2, 1e-7);
    }
  }
}

TEST(VoiceMixer, LimitsSoftlyAndNeverReachesOne) {
  const struct {
    float weight, expected;
  } rows[] = {{0.8F, 0.8F}, {1, 0.9F}, {-1, -0.9F}, {1.8F, 1 - 0.04F / 1.2F}, {0.3F, 0.3F}};
  const std::vector<float> sound(300, 1);
  for (const auto& row : rows) {
    const MixerHandle mixer = makeMixer();
    push(mixer.get(), startOf(sound, 1, row.weight));
    for (const float sample : renderBlock(mixer.get(), 37).left)
      ASSERT_NEAR(sample, row.expected, 1e-6) << row.weight;
  }
  const MixerHandle mixer = makeMixer();
  push(mixer.get(), startOf(sound, 1, 1e30F));
  EXPECT_LT(renderBlock(mixer.get(), 37).left[36], 1);
}

TEST(VoiceMixer, TheOldestVoiceIsTakenOverAtOnceEvenWhileItFades) {
  const std::vector<float> quiet(5000, 0.01F), loud(5000, 0.3F);
  const MixerHandle mixer = makeMixer();
  for (uint32_t tag = 1; tag <= TB_VOICES; ++tag)
    push(mixer.get(), startOf(tag == 1 ? loud : quiet, tag));
  renderBlock(mixer.get(), 1);
  push(mixer.get(), commandOf(TB_COMMAND_RELEASE_ALL));
  push(mixer.get(), startOf(quiet, 99));
  EXPECT_NEAR(renderBlock(mixer.get(), 1).left[0], 32 * 0.01F, 1e-6);
  EXPECT_EQ(tb_mixer_started_voices(mixer.get()), 33U);
  renderBlock(mixer.get(), 400);
  EXPECT_EQ(tb_mixer_active_voices(mixer.get()), 1U) << "only the new voice outlives the release";
}

TEST(VoiceMixer, AReleaseEndsWithoutItsLastFrameAndIsFinal) {
  const std::vector<float> sound(5000, 0.5F);
  const MixerHandle mixer = makeMixer();
  push(mixer.get(), startOf(sound));
  push(mixer.get(), commandOf(TB_COMMAND_RELEASE_ALL));
  push(mixer.get(), commandOf(TB_COMMAND_SET_WEIGHTS, 1, 1));
  const Block block = renderBlock(mixer.get(), 288);
  EXPECT_EQ(block.left[0], 0.5F) << "the first frame still has the gain before the fade";
  EXPECT_NEAR(block.left[286], 0.5F / 144, 1e-6);
  EXPECT_EQ(block.left[287], 0);
  EXPECT_EQ(tb_mixer_active_voices(mixer.get()), 0U);
}

TEST(VoiceMixer, NewWeightsTakeTheCrossfadesTime) {
  const std::vector<float> sound(5000, 0.5F);
  const struct {
    float rate, milliseconds;
    uint32_t frames;
  } rows[] = {{48000, 4, 192}, {0, 0, 192}, {nan, nan, 192}, {1000, 0.1F, 1}, {8000, 10, 80}};
  for (const auto& row : rows) {
    const MixerHandle mixer = makeMixer(row.rate, row.milliseconds);
    push(mixer.get(), startOf(sound, 5, 1));
    push(mixer.get(), commandOf(TB_COMMAND_SET_WEIGHTS, 4, 0));  // no such voice
    push(mixer.get(), commandOf(TB_COMMAND_SET_WEIGHTS, 5, 0));
    const Block block = renderBlock(mixer.get(), row.frames + 1);
    for (uint32_t i = 0; i < row.frames; ++i) {
      const float expected = 0.5F * (1 - static_cast<float>(i) / static_cast<float>(row.frames));
      ASSERT_NEAR(block.left[i], expected, 1e-6) << row.frames << " frames, at " << i;
    }
    EXPECT_EQ(block.left[row.frames], 0);
  }
}

TEST(VoiceMixer, CommandsApplyInABlockOfNoFrames) {
  const std::vector<float> sound(100, 0.5F);
  const MixerHandle mixer = makeMixer();
  ASSERT_TRUE(startVoiceFromC(mixer.get(), sound.data(), 100));
  tb_mixer_set_master(mixer.get(), 0.5F);
  tb_mixer_render(mixer.get(), nullptr, nullptr, 0);
  EXPECT_EQ(tb_mixer_active_voices(mixer.get()), 1U);
  EXPECT_EQ(tb_mixer_rendered_frames(mixer.get()), 0U);
  EXPECT_EQ(renderBlock(mixer.get(), 1).left[0], 0.25F) << "the master has arrived";
  const std::vector<float> none;
  push(mixer.get(), startOf(none));
  renderBlock(mixer.get(), 1);
  EXPECT_EQ(tb_mixer_started_voices(mixer.get()), 1U) << "a voice without sound does not start";
}

TEST(VoiceMixer, TheMasterIsClampedAndSlidesAcrossOneBlock) {
  const struct {
    float set, kept;
  } rows[] = {{-1, 0}, {10, 4}, {0.5F, 0.5F}, {nan, 0}, {infinity, 4}};
  const MixerHandle mixer = makeMixer();
  EXPECT_EQ(tb_mixer_get_master(mixer.get()), 1);
  for (const auto& row : rows) {
    tb_mixer_set_master(mixer.get(), row.set);
    EXPECT_EQ(tb_mixer_get_master(mixer.get()), row.kept);
  }
  const std::vector<float> sound(2000, 0.1F);
  renderBlock(mixer.get(), 1);  // arrives at 4
  push(mixer.get(), startOf(sound));
  tb_mixer_set_master(mixer.get(), 0);
  const Block block = renderBlock(mixer.get(), 1000);
  for (uint32_t i = 0; i < 1000; ++i)
    ASSERT_NEAR(block.left[i], 0.4F * (1 - static_cast<float>(i + 1) / 1000), 1e-6) << i;
}

TEST(VoiceMixer, WhatIsNoNumberStaysInside) {
  const std::vector<float> sound(3000, 0.1F), broken(500, nan);
  const MixerHandle mixer = makeMixer();
  TBCommand start = startOf(sound);
  start.layers[1] = start.layers[0];
  start.weights[1] = nan;
  push(mixer.get(), start);
  push(mixer.get(), startOf(broken, 2));
  push(mixer.get(), startOf(sound, 3, infinity));
  for (const float sample : renderBlock(mixer.get(), 500).left)
    ASSERT_EQ(sample, 0);
  const Block after = renderBlock(mixer.get(), 300);
  EXPECT_NEAR(after.left[0], 0.1F, 1e-7) << "the sound voice plays on";
  push(mixer.get(), commandOf(TB_COMMAND_SET_WEIGHTS, 1, nan));
  EXPECT_EQ(renderBlock(mixer.get(), 300).left[299], 0);
}

}  // namespace
}  // namespace tobrin
