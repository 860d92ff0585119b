// Against the kernel's loopback card, which records what is played: run these as root in a
// virtual machine.
#include "Alsa/AlsaOutput.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "Support/AudioPlayer.h"
#include "Support/Eventually.h"
#include "Tools/Devices/LoopbackCard.h"

namespace tobrin {
namespace {

using testing::eventually;

class AlsaDeviceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists("/proc/asound/Loopback")) GTEST_SKIP() << "no loopback card";
    output_.setCallbacks(player_.callbacks());
  }

  testing::AudioPlayer player_;
  AlsaOutput output_{"hw:Loopback,0,0"};
};

TEST_F(AlsaDeviceTest, IsHeardAfterEachPause) {
  constexpr int pulse = 4800;
  for (int round = 0; round < 3; ++round) {
    // A slow machine opens the card after the start's patience, and then plays all the same.
    ASSERT_TRUE(output_.start() || eventually([&] { return output_.isRunning(); }))
        << output_.problem();
    testing::LoopbackListener listener(testing::AudioPlayer::leftLevel,
                                       testing::AudioPlayer::rightLevel);
    player_.pulseFrames = pulse;
    EXPECT_TRUE(eventually([&] { return player_.pulseFrames == 0; }));
    output_.pause();
    EXPECT_TRUE(eventually([&] { return listener.heard() >= pulse; })) << listener.heard();
    EXPECT_TRUE(eventually([] {
      return std::ifstream("/proc/asound/Loopback/pcm0p/sub0/status").peek() == 'c';  // closed
    }));
  }
  EXPECT_LE(player_.largestBlock, 256U);
}

TEST_F(AlsaDeviceTest, ComesBackWithItsCard) {
  ASSERT_TRUE(output_.start() || eventually([&] { return output_.isRunning(); }))
      << output_.problem();
  testing::tellLoopbackDriver("unbind");
  EXPECT_TRUE(eventually([&] { return !output_.isRunning() && player_.changes >= 1; }));
  EXPECT_NE(output_.problem(), "");
  testing::tellLoopbackDriver("bind");
  EXPECT_TRUE(eventually([&] { return output_.isRunning() && player_.changes >= 2; }));
  const int blocks = player_.blocks;
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks + 20; }));
}

}  // namespace
}  // namespace tobrin
