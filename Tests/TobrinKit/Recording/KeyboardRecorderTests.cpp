#include "Recording/KeyboardRecorder.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Base/Key.h"
#include "Base/MachTime.h"
#include "Support/ScriptedCapture.h"

namespace tobrin {
namespace {

constexpr double rate = SoundCapture::rate;
constexpr std::size_t blockFrames = 480;
constexpr int64_t blockNs = 10'000'000;

/// Ten milliseconds of stereo.
std::vector<float> block(float left, float right) {
  std::vector<float> samples;
  for (std::size_t frame = 0; frame < blockFrames; ++frame) {
    const float sign = frame % 2 == 0 ? 1.0F : -1.0F;
    samples.insert(samples.end(), {left * sign, right * sign});
  }
  return samples;
}

class KeyboardRecorderTest : public ::testing::Test {
 protected:
  void sound(int64_t time, float left, float right) {
    script_->blocks.push_back({time, block(left, right)});
  }
  void press(Key code, int64_t time) {
    recorder_.addKey({codeOf(code), KeyAction::down, static_cast<uint64_t>(time)});
    recorder_.addKey({codeOf(code), KeyAction::up, static_cast<uint64_t>(time + blockNs / 2)});
  }

  std::shared_ptr<testing::CaptureScript> script_ = std::make_shared<testing::CaptureScript>();
  const int64_t start_ = static_cast<int64_t>(machNow());
  KeyboardRecorder recorder_{std::make_unique<testing::ScriptedCapture>(script_)};
};

TEST_F(KeyboardRecorderTest, KeepsTheBetterChannelAndOfKeysNoCode) {
  ASSERT_TRUE(recorder_.start(""));
  // The left channel hums, the right one hears every tenth block.
  for (int index = 0; index < 100; ++index)
    sound(start_ + index * blockNs, 0.3F, index % 10 == 0 ? 0.5F : 0.001F);
  recorder_.collect();
  EXPECT_FLOAT_EQ(recorder_.takes().recording().samples[0], 0.3F) << "not yet known";
  const Key typed[] = {Key::a, Key::space, Key::a, Key::leftShift};
  for (int index = 0; index < 8; ++index)
    press(typed[index % 4], start_ + index * 10 * blockNs);
  recorder_.addForce(codeOf(Key::leftShift), 2.5F);
  press(Key::d, start_ + 99 * blockNs);
  recorder_.collect();
  recorder_.addForce(codeOf(Key::d), 1.5F);
  for (int index = 100; index < 140; ++index)
    sound(start_ + index * blockNs, 0.3F, 0.25F);
  recorder_.collect();

  const KeyedRecording& recording = recorder_.takes().recording();
  ASSERT_EQ(recording.samples.size(), 140 * blockFrames);
  EXPECT_FLOAT_EQ(recording.samples[0], 0.5F);
  EXPECT_FLOAT_EQ(recording.samples.back(), -0.25F);
  ASSERT_EQ(recording.keys.size(), 18U);
  EXPECT_EQ(recording.keys[2],
            (RecordedKey{10 * blockNs, KeyAction::down, KeyGroup::space, 1, {}}));
  EXPECT_EQ(recording.keys[5].number, 0U) << "the same key again";
  EXPECT_EQ(recording.keys[6].group, KeyGroup::modifier);
  EXPECT_EQ(recording.keys[6].force, std::nullopt);
  EXPECT_EQ(recording.keys[14].force, 2.5F) << "the last press of that key";
  EXPECT_EQ(recording.keys[16].force, 1.5F) << "measured only after it was collected";
}

TEST_F(KeyboardRecorderTest, LeavesOutWhatHappensInAPause) {
  ASSERT_TRUE(recorder_.start(""));
  sound(start_, 0.5F, 0);
  recorder_.collect();
  press(Key::a, start_);
  recorder_.stop();
  press(Key::d, start_ + 2 * blockNs);
  const int64_t later = start_ + 60'000'000'000;
  ASSERT_TRUE(recorder_.start(""));
  press(Key::b, later - blockNs);  // before there is sound again
  for (int index = 0; index < 8; ++index)
    sound(later + index * blockNs, 0.25F, 0);
  press(Key::c, later + blockNs);
  recorder_.stop();

  const KeyedRecording& recording = recorder_.takes().recording();
  const auto resumed = static_cast<std::size_t>(std::lround(0.51 * rate));
  ASSERT_EQ(recording.samples.size(), resumed + 8 * blockFrames) << "half a second of silence";
  EXPECT_FLOAT_EQ(recording.samples[blockFrames], 0);
  EXPECT_FLOAT_EQ(recording.samples[resumed], 0.25F);
  ASSERT_EQ(recording.keys.size(), 6U);
  EXPECT_EQ(recording.keys[4].time, 520'000'000);
  EXPECT_EQ(recording.keys[4].number, 2U);
}

TEST(GapFiller, PutsSilenceWhereSoundWasLostAndOnlyThere) {
  const std::vector<float> samples(blockFrames, 1.0F);
  const auto silenceIn = [&](auto lateness) {
    std::size_t silent = 0;
    GapFiller filler(rate, 1, [&](std::span<const float> sound) {
      for (const float sample : sound)
        silent += sample == 0 ? 1 : 0;
    });
    for (int64_t index = 0; index < 60'000; ++index)
      filler.add(index * blockNs + lateness(index), samples);
    filler.flush();
    return silent;
  };
  EXPECT_EQ(silenceIn([](int64_t) { return int64_t{0}; }), 0U);
  EXPECT_EQ(silenceIn([](int64_t index) { return index * blockNs / 5000; }), 0U) << "200 ppm";
  EXPECT_EQ(silenceIn([](int64_t index) { return index % 100 < 2 ? 9 * blockNs : 0; }), 0U)
      << "reported late";
  EXPECT_EQ(silenceIn([](int64_t index) { return index < 500 ? 0 : blockNs / 2; }),
            blockFrames / 2);
  EXPECT_EQ(silenceIn([](int64_t index) { return index < 500 ? 0 : 25 * blockNs; }),
            25 * blockFrames);
}

}  // namespace
}  // namespace tobrin
