#include "Engine/AudioOutput.h"

#include <gtest/gtest.h>

#include "Base/Log.h"
#include "Support/HandDrivenDevice.h"

namespace tobrin {
namespace {

class AudioOutputTest : public ::testing::Test {
 protected:
  AudioOutputTest() {
    setLogSink([this](const std::string& line) { logged_.push_back(line); });
  }
  ~AudioOutputTest() override { setLogSink(nullptr); }

  std::vector<std::string> logged_;
  std::shared_ptr<testing::HandDrivenDevice::Controls> device_ =
      std::make_shared<testing::HandDrivenDevice::Controls>();
  AudioOutput output_{std::make_unique<testing::HandDrivenDevice>(device_)};
};

TEST_F(AudioOutputTest, FollowsItsDeviceUnlessPaused) {
  device_->callbacks.changed();
  EXPECT_FALSE(output_.isRunning());
  EXPECT_TRUE(output_.start());
  EXPECT_TRUE(output_.start());
  EXPECT_EQ(device_->starts, 1);
  device_->callbacks.changed();
  EXPECT_EQ(device_->starts, 2);
  device_->running = false;  // and nobody said so yet
  EXPECT_TRUE(output_.start());
  EXPECT_EQ(device_->starts, 3);
  device_->lose("the server is gone");
  EXPECT_FALSE(output_.isRunning());
  device_->recover();
  EXPECT_TRUE(output_.isRunning());
  output_.pause();
  device_->callbacks.changed();
  EXPECT_FALSE(device_->running);
}

TEST_F(AudioOutputTest, LogsEachCauseOfFailureOnce) {
  device_->refusal = "no server";
  for (int attempt = 0; attempt < 3; ++attempt)
    EXPECT_FALSE(output_.start());
  device_->lose("no device");
  device_->recover();
  EXPECT_TRUE(output_.isRunning());  // it was wanted all the time
  device_->lose("no device");
  EXPECT_EQ(logged_, (std::vector<std::string>{"Tobrin: audio engine failed to start: no server",
                                               "Tobrin: audio engine failed to start: no device",
                                               "Tobrin: audio engine failed to start: no device"}));
  output_.pause();  // ends the device's own attempts
  EXPECT_EQ(device_->pauses, 1);
}

}  // namespace
}  // namespace tobrin
