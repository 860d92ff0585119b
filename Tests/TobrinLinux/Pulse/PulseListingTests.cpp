#include "Pulse/PulseListing.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

using Processes = std::vector<int32_t>;

TEST(PulseListing, CountsProgramsThatRecordAMicrophone) {
  constexpr uint32_t monitor = 1, microphone = 2, other = 3;
  PulseListing listing{.sources = {{monitor, {"out.monitor", "Monitor", true}},
                                   {microphone, {"mic", "Microphone"}},
                                   {other, {"other", ""}}},
                       .recorders = {},
                       .defaultSource = "mic"};
  listing.recorders = {{monitor, 10},
                       {.source = microphone, .process = 11, .isCorked = true},
                       {.source = microphone, .process = 12, .isLevelMeter = true},
                       {.source = microphone, .isModule = true},
                       {microphone, 99},
                       {17, 13}};
  const MicActivity quiet = listing.activity(99);
  EXPECT_EQ(quiet.recordingProcesses, Processes());
  EXPECT_EQ(quiet.inputDeviceName, "Microphone");
  EXPECT_FALSE(quiet.micInUse());
  listing.recorders.push_back({other, 15});
  EXPECT_EQ(listing.activity(99).recordingProcesses, Processes{15});
  EXPECT_FALSE(listing.activity(99).inputRunningSomewhere);
  listing.recorders.push_back({microphone, 14});
  EXPECT_EQ(listing.activity(99).recordingProcesses, (Processes{14, 15}));
  EXPECT_TRUE(listing.activity(99).inputRunningSomewhere);
  listing.defaultSource = "out.monitor";
  EXPECT_EQ(listing.activity(99).inputDeviceName, std::nullopt);
}

}  // namespace
}  // namespace tobrin
