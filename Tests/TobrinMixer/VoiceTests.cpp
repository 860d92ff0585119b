// What commands do to voices, and what a mixer keeps of absurd input.
#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <tuple>

#include "CommandRing.h"
#include "MixerFixture.h"

extern "C" bool startVoiceFromC(TBMixer* mixer, const float* samples, uint32_t frames);

namespace tobrin {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

void push(TBMixer* mixer, const TBCommand& command) {
  ASSERT_TRUE(tb_mixer_push(mixer, &command));
}

TEST(VoiceMixer, PlaysAtItsOwnRateWhatHasNone) {
  const std::vector<float> sound(1000, 0.5F);
  for (const float rate : {nan, -1.0F, infinity}) {
    const MixerHandle mixer = makeMixer();
    TBCommand start = startOf(sound);
    start.rate = rate;
    start.pan = nan;
    push(mixer.get(), start);
    const Block block = renderBlock(mixer.get(), 1001);
    EXPECT_NEAR(block.right[0], 0.5F, 1e-6) << "in the middle";
    EXPECT_NE(block.left[999], 0) << rate;
    EXPECT_EQ(block.left[1000], 0) << rate;
  }
}

TEST(VoiceMixer, NewWeightsTakeTheCrossfadesTime) {
  const std::vector<float> sound(5000, 0.5F);
  const std::tuple<float, float, uint32_t> rows[] = {
      {0, 0, 192}, {nan, nan, 192}, {1000, 0.1F, 1}, {8000, 10, 80}};
  for (const auto& [rate, milliseconds, frames] : rows) {
    const MixerHandle mixer = makeMixer(rate, milliseconds);
    push(mixer.get(), startOf(sound, 5, 1));
    push(mixer.get(), commandOf(TB_COMMAND_SET_WEIGHTS, 5, 0));
    const Block block = renderBlock(mixer.get(), frames + 1);
    EXPECT_NEAR(block.left[frames - 1], 0.5F / static_cast<float>(frames), 1e-6);
    EXPECT_EQ(block.left[frames], 0);
  }
}

TEST(VoiceMixer, ForgetsWhatSoundsAndWaitsButNothingThatComesLater) {
  const std::vector<float> sound(9000, 0.5F), next(9000, 0.1F);
  const MixerHandle mixer = makeMixer();
  for (const uint32_t waiting : {0U, 3U, static_cast<uint32_t>(TB_RING_CAPACITY)}) {
    push(mixer.get(), startOf(sound));
    renderBlock(mixer.get(), 64);
    for (uint32_t i = 0; i < waiting; ++i)
      push(mixer.get(), startOf(sound));
    tb_mixer_forget(mixer.get());
    if (waiting < TB_RING_CAPACITY) push(mixer.get(), startOf(next));
    const float expected = waiting < TB_RING_CAPACITY ? 0.1F : 0;
    for (int block = 0; block < 2; ++block)
      EXPECT_NEAR(renderBlock(mixer.get(), 64).left[63], expected, 1e-6) << waiting;
    tb_mixer_forget(mixer.get());
  }
}

TEST(VoiceMixer, PlaysForCallersInC) {
  const std::vector<float> sound(100, 0.5F);
  const MixerHandle mixer = makeMixer();
  ASSERT_TRUE(startVoiceFromC(mixer.get(), sound.data(), 100));
  EXPECT_EQ(renderBlock(mixer.get(), 1).left[0], 0.5F);
}

TEST(VoiceMixer, WhatIsNoNumberStaysInside) {
  const std::vector<float> sound(3000, 0.1F), broken(500, nan);
  const MixerHandle mixer = makeMixer();
  for (const auto& [set, kept] : {std::pair{-1.0F, 0.0F}, {infinity, 4.0F}, {nan, 0.0F}, {1, 1}}) {
    tb_mixer_set_master(mixer.get(), set);
    EXPECT_EQ(tb_mixer_get_master(mixer.get()), kept);
  }
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
  push(mixer.get(), startOf(sound, 4, 1e30F));
  EXPECT_LT(renderBlock(mixer.get(), 37).left[36], 1);
  push(mixer.get(), commandOf(TB_COMMAND_SET_WEIGHTS, 4, 0));
  push(mixer.get(), commandOf(TB_COMMAND_SET_WEIGHTS, 1, nan));
  EXPECT_EQ(renderBlock(mixer.get(), 300).left[299], 0);
}

// Every field of a command tells its number, so that a slot read too early or too late shows.
TEST(CommandRing, HandsEveryCommandOverWholeAndInOrderAcrossTheWrapOfItsCounts) {
  constexpr uint32_t total = 200'000;
  CommandRing ring(uint32_t{0} - total / 2);
  std::thread producer([&] {
    for (uint32_t n = 1; n <= total;) {
      TBCommand command = commandOf(n, ~n, static_cast<float>(n));
      command.layers[3].frames = n;
      if (ring.push(command)) ++n;
    }
  });
  uint32_t received = 0;
  bool whole = true;
  while (received < total) {
    ring.drain(
        [&](const TBCommand& command) {
          ++received;
          whole = whole && command.type == received && command.tag == ~received &&
                  command.weights[0] == static_cast<float>(received) &&
                  command.layers[3].frames == received;
        },
        [&] { whole = false; });
  }
  producer.join();
  EXPECT_TRUE(whole);
}

}  // namespace
}  // namespace tobrin
