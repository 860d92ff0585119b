#include "Diagnostics/MicWatch.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Engine/MachTime.h"
#include "Engine/VirtualQueue.h"
#include "Support/ScriptedMicSource.h"

namespace tobrin {
namespace {

TEST(MicWatch, PrintsTheStateAndEachChange) {
  setenv("TZ", "UTC", 1);
  tzset();
  std::ostringstream out;
  VirtualQueue queue(MicMonitor::queueName), main("main");
  const auto mic = std::make_shared<testing::MicState>();
  mic->activity = {"Webcam", false, false, {{}}};
  MicMonitor monitor(queue, main, std::make_unique<testing::ScriptedMicSource>(mic));
  const auto pass = [&](double ms) {
    queue.runUntil(queue.now() + MachTime::ticks(ms));
    main.runUntil(queue.now());
  };
  MicWatch::Surroundings surroundings;
  surroundings.processName = [](int32_t process) {
    return process == 99 ? std::optional<std::string>("caller") : std::nullopt;
  };
  surroundings.now = [&] { return 3600 + static_cast<std::time_t>(queue.now() / 1000000000); };
  surroundings.sleep = [&](auto) {
    pass(1000);
    for (const std::vector<int32_t>& processes : {std::vector{99, 98}, {98}, {}}) {
      mic->activity.inputRunningSomewhere = !processes.empty();
      mic->activity.recordingProcesses = processes;
      mic->changed();
      pass(0);
    }
    pass(2000);
  };
  MicWatch watch(monitor, main, out, surroundings);
  EXPECT_EQ(watch.run(5.9), 0);
  EXPECT_EQ(out.str(),
            "Watching the microphone for 5 s (Core Audio state only, nothing is recorded).\n"
            "  default input: Webcam · running: no · recording: nobody\n"
            "  mic in use: no\n"
            "01:00:01  mic in use: sounds pause\n"
            "  default input: Webcam · running: yes · recording: caller, pid 98\n"
            "01:00:03  mic free: sounds resume\n"
            "  default input: Webcam · running: no · recording: nobody\n");
  EXPECT_FALSE(mic->changed);
  EXPECT_EQ(watch.describe({"Headset", true, true, std::nullopt}),
            "default input: Headset (also plays audio) · running: yes · "
            "recording: unknown before macOS 14");
}

}  // namespace
}  // namespace tobrin
