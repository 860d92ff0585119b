#include "Diagnostics/MicWatch.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Engine/MachTime.h"
#include "Engine/VirtualQueue.h"
#include "Support/ScriptedMicSource.h"

namespace tobrin {
namespace {

class MicWatchTest : public ::testing::Test {
 protected:
  MicWatchTest() {
    setenv("TZ", "UTC", 1);
    tzset();
  }

  void pass(double ms) {
    queue_.runUntil(queue_.now() + MachTime::ticks(ms));
    main_.runUntil(queue_.now());
  }

  void record(std::vector<int32_t> processes) {
    mic_->activity.inputRunningSomewhere = !processes.empty();
    mic_->activity.recordingProcesses = std::move(processes);
    mic_->changed();
    pass(0);
  }

  [[nodiscard]] MicWatch watch(std::function<void()> meanwhile) {
    MicWatch::Surroundings surroundings;
    surroundings.processName = [](int32_t process) {
      return process == 99 ? std::optional<std::string>("caller") : std::nullopt;
    };
    surroundings.now = [this] {
      return 3600 + static_cast<std::time_t>(queue_.now() / 1000000000);
    };
    surroundings.sleep = [=](auto) { meanwhile(); };
    return {monitor_, main_, out_, surroundings};
  }

  std::ostringstream out_;
  VirtualQueue queue_{MicMonitor::queueName};
  VirtualQueue main_{"main"};
  std::shared_ptr<testing::MicState> mic_ = std::make_shared<testing::MicState>();
  MicMonitor monitor_{queue_, main_, std::make_unique<testing::ScriptedMicSource>(mic_)};
};

TEST_F(MicWatchTest, PrintsTheStateAndEachChange) {
  mic_->activity = {"Webcam", false, false, {{}}};
  MicWatch watch = this->watch([this] {
    pass(1000);
    record({99, 98});
    record({98});  // no change of state
    record({});
    pass(2000);
  });
  EXPECT_EQ(watch.run(5.9), 0);
  EXPECT_EQ(out_.str(),
            "Watching the microphone for 5 s (Core Audio state only, nothing is recorded).\n"
            "  default input: Webcam · running: no · recording: nobody\n"
            "  mic in use: no\n"
            "01:00:01  mic in use: sounds pause\n"
            "  default input: Webcam · running: yes · recording: caller, pid 98\n"
            "01:00:03  mic free: sounds resume\n"
            "  default input: Webcam · running: no · recording: nobody\n");
  EXPECT_FALSE(mic_->changed);
  EXPECT_EQ(watch.describe({"Headset", true, true, std::nullopt}),
            "default input: Headset (also plays audio) · running: yes · "
            "recording: unknown before macOS 14");
}

}  // namespace
}  // namespace tobrin
