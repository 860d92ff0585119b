#include "Mic/MicMonitor.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Support/ScriptedMicSource.h"

namespace tobrin {
namespace {

using testing::MicState;
using testing::ScriptedMicSource;

class MicMonitorTest : public ::testing::Test {
 protected:
  MicMonitorTest() {
    monitor_.setOnChange([this](bool inUse) { reports_.push_back(inUse); });
  }

  /// So many milliseconds pass, then these processes record.
  void recordAt(double ms, std::vector<int32_t> processes) {
    pass(ms);
    mic_->activity.recordingProcesses = std::move(processes);
    if (mic_->changed) mic_->changed();
    pass(0);
  }

  void pass(double ms) {
    queue_.runUntil(queue_.now() + machTicks(ms));
    main_.runUntil(queue_.now());
  }

  VirtualQueue queue_{MicMonitor::queueName};
  VirtualQueue main_{"main"};
  std::shared_ptr<MicState> mic_ = std::make_shared<MicState>();
  std::vector<bool> reports_;
  MicMonitor monitor_{queue_, main_, std::make_unique<ScriptedMicSource>(mic_)};
};

TEST_F(MicMonitorTest, ReadsAgainBeforeItReleases) {
  mic_->activity.recordingProcesses = {99};
  monitor_.start();
  pass(0);
  EXPECT_EQ(reports_, (std::vector<bool>{true, true}));  // found in use, and the state at the start
  recordAt(0, {});
  mic_->activity.recordingProcesses = {99};  // its notice is still under way
  pass(2000);
  EXPECT_EQ(reports_, (std::vector<bool>{true, true}));
  recordAt(0, {});
  recordAt(400, {});  // another notice does not put the release off
  pass(599);
  EXPECT_EQ(reports_.size(), 2U);
  pass(1);
  EXPECT_EQ(reports_, (std::vector<bool>{true, true, false}));
}

TEST_F(MicMonitorTest, StopsWithoutAReport) {
  monitor_.start();
  recordAt(0, {99});
  recordAt(0, {});
  monitor_.stop();
  pass(5000);
  EXPECT_EQ(reports_, (std::vector<bool>{false, true}));
  EXPECT_FALSE(mic_->changed);
  mic_->activity.recordingProcesses = {99};
  monitor_.refresh();  // nothing to a stopped monitor
  pass(0);
  EXPECT_EQ(reports_, (std::vector<bool>{false, true}));
  monitor_.start();
  pass(0);
  recordAt(0, {});
  pass(1000);
  EXPECT_FALSE(reports_.back()) << "the release that was stopped is not waited for";
}

TEST_F(MicMonitorTest, TellsOnceWhatIsNewAfterTheDelayThatIsSet) {
  std::vector<bool> recorded;
  monitor_.setOnOutputRecorded([&](bool isRecorded) { recorded.push_back(isRecorded); });
  monitor_.setReleaseDelay(std::chrono::milliseconds(250));
  mic_->activity.outputRecorded = true;
  monitor_.start();
  monitor_.start();
  pass(0);
  EXPECT_EQ(recorded, (std::vector<bool>{true, true})) << "found, and the state at the start";
  mic_->activity.outputRecorded = false;
  mic_->activity.recordingProcesses = {99};
  monitor_.refresh();
  pass(0);
  EXPECT_EQ(monitor_.current(), mic_->activity);
  recordAt(0, {});
  pass(249);
  EXPECT_EQ(reports_, (std::vector<bool>{false, true}));
  pass(1);
  EXPECT_EQ(reports_, (std::vector<bool>{false, true, false}));
  EXPECT_EQ(recorded, (std::vector<bool>{true, true, false}));
}

TEST(MicActivity, TrustsARunningDeviceOnlyWhereItDoesNotPlay) {
  EXPECT_FALSE(MicActivity().micInUse());
  EXPECT_TRUE((MicActivity{"Mic", true, false, std::nullopt}).micInUse());
  EXPECT_FALSE((MicActivity{"Headset", true, true, std::nullopt}).micInUse()) << "it may play";
  EXPECT_FALSE((MicActivity{"Headset", true, true, std::vector<int32_t>{}}).micInUse())
      << "nobody records";
  EXPECT_TRUE((MicActivity{"Mic", false, false, {{99}}}).micInUse()) << "from another device";
}

}  // namespace
}  // namespace tobrin
