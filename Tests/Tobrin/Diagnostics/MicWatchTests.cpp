#include "Diagnostics/MicWatch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Support/ScriptedMicSource.h"

namespace tobrin {
namespace {

TEST(MicWatch, DescribesTheInput) {
  std::ostringstream out;
  VirtualQueue queue(MicMonitor::queueName), main("main");
  MicMonitor monitor(queue, main, nullptr);
  const PlatformWords words{.unknownRecorder = "unknown here"};
  MicWatch::Surroundings surroundings{.words = words};
  surroundings.processName = [](int32_t process) {
    return process == 99 ? std::optional<std::string>("caller") : std::nullopt;
  };
  const MicWatch watch(monitor, main, out, surroundings);
  EXPECT_EQ(watch.describe({std::nullopt, false, false, {{99, 98}}}),
            "default input: none · running: no · recording: caller, pid 98");
  EXPECT_EQ(watch.describe({"Headset", true, true, std::nullopt}),
            "default input: Headset (also plays audio) · running: yes · "
            "recording: unknown here");
}

TEST(MicWatch, SaysWhatItSeesWordForWord) {
  setenv("TZ", "UTC", 1);
  std::ostringstream out;
  VirtualQueue queue(MicMonitor::queueName), main("main");
  const auto mic = std::make_shared<testing::MicState>();
  MicMonitor monitor(queue, main, std::make_unique<testing::ScriptedMicSource>(mic));
  const PlatformWords words{.soundStateOnly = "(state only)"};
  MicWatch::Surroundings surroundings{.now = [] { return std::time_t{3723}; }, .words = words};
  surroundings.processName = [](int32_t) { return std::optional<std::string>("caller"); };
  surroundings.sleep = [&](auto) {
    queue.runUntil(queue.now());
    for (const bool called : {true, false}) {
      mic->activity.recordingProcesses = called ? std::vector<int32_t>{7} : std::vector<int32_t>();
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
            "  default input: none · running: no · recording: caller\n"
            "01:02:03  mic free: sounds resume\n"
            "  default input: none · running: no · recording: nobody\n");
}

}  // namespace
}  // namespace tobrin
