#include "PipeWire/PipeWireOutput.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PipeWire/PipeWireLoop.h"
#include "Support/AudioPlayer.h"
#include "Support/Eventually.h"
#include "Support/WakeUps.h"
#include "Tools/Desktop/SinkRecording.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
using testing::eventually;
using testing::tellDesktop;
using testing::wakeUps;

class PipeWireOutputTest : public ::testing::Test {
 protected:
  PipeWireOutputTest() { output_.setCallbacks(player_.callbacks()); }

  testing::AudioPlayer player_;
  PipeWireOutput output_{std::make_shared<PipeWireLoop>()};
};

TEST_F(PipeWireOutputTest, FirstSoundAfterAPauseIsHeardWhole) {
  testing::SinkRecording recording("test_sink");
  constexpr std::size_t pulse = 1000;
  for (std::size_t round = 1; round <= 5; ++round) {
    player_.pulseFrames = pulse;
    ASSERT_TRUE(output_.start()) << output_.problem();
    EXPECT_TRUE(output_.start());
    EXPECT_TRUE(eventually([&] { return recording.heard().size() >= round * pulse; }));
    output_.pause();
  }
  const auto heard = recording.heard();
  ASSERT_EQ(heard.size(), 5 * pulse);
  for (const auto& [left, right] : heard) {
    ASSERT_EQ(left, 0.5F);
    ASSERT_EQ(right, -0.25F);
  }
  EXPECT_EQ(player_.largestBlock, 256U);
  EXPECT_EQ(player_.changes, 0);
  for (int turn = 0; turn < 50; ++turn) {
    ASSERT_TRUE(output_.start()) << output_.problem();
    output_.pause();
    const int blocks = player_.blocks;
    std::this_thread::sleep_for(2ms);
    ASSERT_EQ(player_.blocks, blocks) << "silent at once";
  }
}

TEST_F(PipeWireOutputTest, PausedIsIdleAlsoWhileTheServerComesAndGoes) {
  ASSERT_TRUE(output_.start());
  ASSERT_TRUE(eventually([&] { return player_.blocks > 10; }));
  output_.pause();
  // The server lets the device go to sleep.
  EXPECT_TRUE(eventually([] {
    return testing::ChildProcess(
               {"sh", "-c", "pactl list short sinks | grep test_sink | grep -qE 'IDLE|SUSPENDED'"})
               .wait() == 0;
  }));
  const int blocks = player_.blocks;
  for (const char* disturbance : {"pids", "kill-sound"}) {
    tellDesktop(disturbance);
    std::this_thread::sleep_for(200ms);  // a loss is noticed, also on a busy machine
    const uint64_t before = wakeUps();
    std::this_thread::sleep_for(800ms);
    EXPECT_LE(wakeUps() - before, testing::restingWakeUps) << disturbance;  // 150 while it plays
  }
  tellDesktop("start-sound");
  EXPECT_FALSE(output_.isRunning());
  EXPECT_EQ(player_.blocks, blocks);
  ASSERT_TRUE(output_.start()) << output_.problem();
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks; }));
}

}  // namespace
}  // namespace tobrin
