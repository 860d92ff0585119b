// Against the kernel's loopback card, whose other end hears what is played: run these as root in a
// virtual machine.
#include "Alsa/AlsaOutput.h"

#include <alsa/asoundlib.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "Support/AudioPlayer.h"
#include "Support/Eventually.h"

namespace tobrin {
namespace {

using testing::eventually;

/// Hears the other end of the card.
class Listener {
 public:
  Listener() {
    snd_pcm_open(&pcm_, "hw:Loopback,1,0", SND_PCM_STREAM_CAPTURE, SND_PCM_NONBLOCK);
    snd_pcm_set_params(pcm_, SND_PCM_FORMAT_FLOAT, SND_PCM_ACCESS_RW_INTERLEAVED, 2, 48000, 0,
                       500000);
    EXPECT_EQ(snd_pcm_start(pcm_), 0) << "the card's other end cannot be heard";
  }
  ~Listener() { snd_pcm_close(pcm_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /// Frames so far that were not silent.
  int heard() {
    std::vector<float> samples(2 * 4096);
    for (;;) {
      const auto frames = snd_pcm_readi(pcm_, samples.data(), samples.size() / 2);
      if (frames <= 0) return heard_;
      for (std::size_t i = 0; i < static_cast<std::size_t>(frames); ++i) {
        if (samples[2 * i] == testing::AudioPlayer::leftLevel &&
            samples[2 * i + 1] == testing::AudioPlayer::rightLevel) {
          ++heard_;
        }
      }
    }
  }

 private:
  snd_pcm_t* pcm_ = nullptr;
  int heard_ = 0;
};

class AlsaDeviceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists("/proc/asound/Loopback")) GTEST_SKIP() << "no loopback card";
    output_.setCallbacks(player_.callbacks());
  }

  static void tellDriver(const char* action) {
    std::ofstream(std::string("/sys/bus/platform/drivers/snd_aloop/") + action) << "snd_aloop.0";
  }

  testing::AudioPlayer player_;
  AlsaOutput output_{"hw:Loopback,0,0"};
};

TEST_F(AlsaDeviceTest, IsHeardAfterEachPause) {
  constexpr int pulse = 4800;
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(output_.start()) << output_.problem();
    Listener listener;
    player_.pulseFrames = pulse;
    EXPECT_TRUE(eventually([&] { return listener.heard() >= pulse; })) << listener.heard();
    output_.pause();
    EXPECT_EQ(std::ifstream("/proc/asound/Loopback/pcm0p/sub0/status").peek(), 'c');  // closed
  }
  EXPECT_LE(player_.largestBlock, 256U);
}

TEST_F(AlsaDeviceTest, ComesBackWithItsCard) {
  ASSERT_TRUE(output_.start()) << output_.problem();
  tellDriver("unbind");
  EXPECT_TRUE(eventually([&] { return !output_.isRunning() && player_.changes == 1; }));
  EXPECT_NE(output_.problem(), "");
  tellDriver("bind");
  EXPECT_TRUE(eventually([&] { return output_.isRunning() && player_.changes >= 2; }));
  const int blocks = player_.blocks;
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks + 20; }));
}

}  // namespace
}  // namespace tobrin
