#include "Model/PlayedPack.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Base/Log.h"
#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Support/HandDrivenDevice.h"
#include "Support/TempFolder.h"
#include "Support/TestPack.h"

namespace tobrin {
namespace {

TEST(PlayedPack, ATrialIsHeardUntilItEndsUnlessAnotherOvertakesIt) {
  const testing::TempFolder folder;
  for (const std::string id : {"first", "second"})
    folder.write(id + "/pack.json",
                 R"({"formatVersion":1,"id":")" + id + R"(","name":"n","kind":"k","groups":{}})");
  const auto packOf = [](const PackInfo& info) {
    testing::TestPack pack;
    for (const Tier tier : allTiers)
      pack.down(KeyGroup::alpha, tier, info.id == "first" ? 0.2F : 0.4F, 96'000);
    return pack.make();
  };
  VirtualQueue main("main"), loader("loader"), queue(Conductor::queueName);
  const auto device = std::make_shared<testing::HandDrivenDevice::Controls>();
  Conductor conductor(
      queue, std::make_unique<AudioOutput>(std::make_unique<testing::HandDrivenDevice>(device)),
      nullptr);
  conductor.apply({.volume = 1, .blendTiers = false, .spatial = 0}, true);
  PlayedPack played({.main = main, .loader = loader, .loadPack = packOf, .conductor = conductor});
  const auto level = [&] {
    for (int round = 0; round < 2; ++round)
      for (VirtualQueue* each : {&loader, &main, &queue})
        each->runUntil(each->now() + machTicks(5));
    return std::lround(10 * device->render(2048).first.back());
  };
  EXPECT_EQ(level(), 0);
  played.tryOut(folder.path() / "first");
  EXPECT_TRUE(played.isTrying());
  EXPECT_EQ(level(), 2) << "the phrase begins by itself";
  played.tryOut(folder.path() / "first");
  played.tryOut(folder.path() / "second");
  EXPECT_EQ(level(), 4);
  played.tryOut(folder.path() / "first");
  played.endTrial();
  EXPECT_FALSE(played.isTrying());
  EXPECT_EQ(level(), 0) << "called off";
  std::string log;
  setLogSink([&](const std::string& line) { log += line; });
  played.tryOut(folder.path() / "third");
  EXPECT_EQ(level(), 0);
  setLogSink(nullptr);
  EXPECT_NE(log.find("the pack to try can't be loaded: "), std::string::npos) << log;
}

}  // namespace
}  // namespace tobrin
