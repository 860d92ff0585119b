#include "Diagnostics/MicWatch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Support/ScriptedMicSource.h"

namespace tobrin {
namespace {

TEST(MicWatch, SaysWhatItSeesWordForWord) {
  setenv("TZ", "UTC", 1);
  std::ostringstream out;
  VirtualQueue queue(MicMonitor::queueName), main("main");
  const auto mic = std::make_shared<testing::MicState>();
  MicMonitor monitor(queue, main, std::make_unique<testing::ScriptedMicSource>(mic));
  const PlatformWords words{.soundStateOnly = "(state only)", .unknownRecorder = "unknown here"};
  MicWatch::Surroundings surroundings{.now = [] { return std::time_t{3723}; }, .words = words};
  surroundings.processName = [](int32_t process) {
    return process == 7 ? std::optional<std::string>("caller") : std::nullopt;
  };
  const MicActivity seen[] = {{std::nullopt, false, false, {{0, 7}}},
                              {std::nullopt, false, false, {std::vector<int32_t>()}},
                              {"Headset", true, true, {{98}}},
                              {std::nullopt, false, false, {std::vector<int32_t>()}},
                              {"Webcam", true, false, std::nullopt}};
  surroundings.sleep = [&](auto) {
    queue.runUntil(queue.now());
    for (const MicActivity& activity : seen) {
      mic->activity = activity;
      mic->changed();
      queue.runUntil(queue.now() + machTicks(2000));
      main.runUntil(queue.now());
    }
  };
  mic->activity.recordingProcesses.emplace();
  EXPECT_EQ(MicWatch(monitor, main, out, surroundings).run(2.9), 0);
  EXPECT_EQ(out.str(),
            "Watching the microphone for 2 s (state only).\n"
            "  default input: none · running: no · recording: nobody\n  mic in use: no\n"
            "01:02:03  mic in use: sounds pause\n"
            "  default input: none · running: no · recording: an app that does not say who it is, "
            "caller\n"
            "01:02:03  mic free: sounds resume\n"
            "  default input: none · running: no · recording: nobody\n"
            "01:02:03  mic in use: sounds pause\n"
            "  default input: Headset (also plays audio) · running: yes · recording: pid 98\n"
            "01:02:03  mic free: sounds resume\n"
            "  default input: none · running: no · recording: nobody\n"
            "01:02:03  mic in use: sounds pause\n"
            "  default input: Webcam · running: yes · recording: unknown here\n");
}

}  // namespace
}  // namespace tobrin
