#include "Mic/FallbackMicSource.h"

#include <gtest/gtest.h>

#include "Support/ScriptedMicSource.h"

namespace tobrin {
namespace {

using Processes = std::vector<int32_t>;

TEST(FallbackMicSource, AsksTheOtherServerWhereTheFirstKnowsNoMicrophone) {
  const auto first = std::make_shared<testing::MicState>(),
             second = std::make_shared<testing::MicState>();
  FallbackMicSource source(std::make_unique<testing::ScriptedMicSource>(first),
                           std::make_unique<testing::ScriptedMicSource>(second));
  second->activity.recordingProcesses = Processes{7};
  EXPECT_TRUE(source.read().micInUse());
  EXPECT_FALSE(second->changed) << "not started yet";
  source.start([] {});
  EXPECT_TRUE(first->changed);
  first->activity.recordingProcesses = Processes();  // a server for the screen alone
  EXPECT_TRUE(source.read().micInUse());
  EXPECT_TRUE(second->changed);
  first->activity.inputDeviceName = "Microphone";
  EXPECT_FALSE(source.read().micInUse()) << "it has the microphones now";
  EXPECT_FALSE(second->changed);
  first->activity = {};  // it went away
  second->activity = {};
  EXPECT_EQ(source.read().recordingProcesses, std::nullopt);
  EXPECT_TRUE(second->changed);
  source.stop();
  EXPECT_FALSE(first->changed || second->changed);
}

}  // namespace
}  // namespace tobrin
