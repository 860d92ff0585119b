#include "Desktop/MakeAudioDevice.h"

#include <alsa/asoundlib.h>
#include <gtest/gtest.h>

#include "Support/AudioPlayer.h"
#include "Support/Eventually.h"
#include "Support/TempFolder.h"
#include "Tools/Desktop/ChildProcess.h"

namespace tobrin {
namespace {

using testing::eventually;
using testing::tellDesktop;

class MakeAudioDeviceTest : public ::testing::Test {
 protected:
  MakeAudioDeviceTest() {
    tellDesktop("kill-sound");
    device_->setCallbacks(player_.callbacks());
  }
  ~MakeAudioDeviceTest() override {
    unsetenv("ALSA_CONFIG_PATH");
    snd_config_update_free_global();
    tellDesktop("restart-sound");
  }

  void configureAlsa(const std::string& text) {
    setenv("ALSA_CONFIG_PATH", folder_.write("asound.conf", text).c_str(), 1);
    snd_config_update_free_global();
  }

  [[nodiscard]] bool isOnPipeWire() const {
    return device_->isRunning() && device_->description() == "PipeWire, test_sink";
  }

  testing::TempFolder folder_;
  testing::AudioPlayer player_;
  std::unique_ptr<AudioDevice> device_ = makeAudioDevice(makePipeWireLoop());
};

TEST_F(MakeAudioDeviceTest, UsesAlsaUntilAServerAnswersAndNeverAfter) {
  configureAlsa("pcm.default { type null }");
  ASSERT_TRUE(device_->start()) << device_->problem();
  EXPECT_EQ(device_->description(), "ALSA, default");
  tellDesktop("start-sound");
  EXPECT_TRUE(eventually([&] { return isOnPipeWire() && player_.changes > 0; }));
  const int blocks = player_.blocks;
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks + 20; }));
  EXPECT_FALSE(player_.overlapped);

  tellDesktop("kill-sound");
  EXPECT_TRUE(eventually([&] { return !device_->isRunning(); }));
  EXPECT_FALSE(device_->start());
  device_->pause();
}

TEST_F(MakeAudioDeviceTest, DoesNotReachForTheMissingServerThroughAlsa) {
  configureAlsa("pcm.default { type pipewire }");
  EXPECT_FALSE(device_->start());
  EXPECT_NE(device_->problem().find("no PipeWire server answers"), std::string::npos)
      << device_->problem();
  tellDesktop("start-sound");
  EXPECT_TRUE(eventually([&] { return isOnPipeWire(); }));
}

}  // namespace
}  // namespace tobrin
