#include "Diagnostics/MicWatch.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Engine/VirtualQueue.h"

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

}  // namespace
}  // namespace tobrin
