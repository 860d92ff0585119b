#include "Force/ForceRecorder.h"

#include <gtest/gtest.h>

#include "Support/ScriptedKeySource.h"
#include "Support/ScriptedMotionSource.h"

namespace tobrin {
namespace {

using testing::KeyScript;
using testing::ScriptedKeySource;
using testing::ScriptedMotionSource;

class ForceRecorderTest : public ::testing::Test {
 protected:
  ScriptedMotionSource::Controls motion;
  KeyScript keys;
  ForceRecorder recorder{std::make_unique<ScriptedMotionSource>(motion),
                         [this](KeyMonitor::Handler handler) {
                           return std::make_unique<KeyMonitor>(
                               std::make_unique<ScriptedKeySource>(keys), std::move(handler));
                         }};
};

TEST_F(ForceRecorderTest, KeepsSamplesInOrderAndOfKeysOnlyTheGroup) {
  ASSERT_TRUE(recorder.start());
  motion.send({0, 0, 1}, 100);
  motion.send({0, 0, 9}, 50);  // the sensor's clock jumped back
  motion.send({0.5, 0, 1}, 200);
  std::vector<MotionTrace::Sample> samples;
  while (samples.size() < 2)
    for (const auto& sample : recorder.take().samples)
      samples.push_back(sample);
  EXPECT_EQ(samples, (std::vector<MotionTrace::Sample>{{100, {0, 0, 1}}, {200, {0.5, 0, 1}}}));
  for (const uint16_t code : std::vector<uint16_t>{12, 48, 76, 117, 59}) {
    keys.press(code);
    keys.release(code);
  }
  std::vector<uint16_t> codes;
  for (const auto& key : recorder.take().keys)
    codes.push_back(key.code);
  EXPECT_EQ(codes, (std::vector<uint16_t>{0, 56, 36, 51, 56})) << "Tab counts as a modifier";
}

TEST_F(ForceRecorderTest, SaysWhatIsMissingAndLeavesNothingRunning) {
  keys.allow(false);
  EXPECT_FALSE(recorder.start());
  EXPECT_EQ(recorder.problem(), "not allowed");
  EXPECT_EQ(motion.closed, 1);
  motion.refuse = true;
  EXPECT_FALSE(recorder.start());
  EXPECT_EQ(recorder.problem(), "the test says no");
}

}  // namespace
}  // namespace tobrin
