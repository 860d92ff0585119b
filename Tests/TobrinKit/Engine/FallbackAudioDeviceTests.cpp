#include "Engine/FallbackAudioDevice.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Support/HandDrivenDevice.h"

namespace tobrin {
namespace {

using testing::HandDrivenDevice;
using Controls = HandDrivenDevice::Controls;

struct Owner {
  std::shared_ptr<Controls> first = std::make_shared<Controls>();
  std::shared_ptr<Controls> second = std::make_shared<Controls>();
  bool mayFallBack = true;
  int notices = 0;
  std::string used;
  FallbackAudioDevice device{std::make_unique<HandDrivenDevice>(first),
                             [this] { return std::make_unique<HandDrivenDevice>(second); },
                             [this] { return mayFallBack; }};

  Owner() {
    const auto ones = [](void*, float* left, float*, uint32_t frames) noexcept {
      std::fill_n(left, frames, 1.0F);
    };
    device.setCallbacks({.render = ones,
                         .context = nullptr,
                         .changed = [this] { ++notices; },
                         .outputsChanged = [this](const SoundOutputs& now) { used = now.used; }});
  }
  static bool sounds(Controls& side) { return side.render(4).first[0] == 1.0F; }
};

TEST(FallbackAudioDevice, PlaysOnTheOtherDeviceUntilTheFirstRuns) {
  Owner owner;
  owner.device.choose("the loud one");
  EXPECT_EQ(owner.first->chosen, "the loud one");
  owner.first->callbacks.outputsChanged({.present = {}, .used = "server's"});
  EXPECT_EQ(owner.used, "server's");
  owner.first->refusal = "no server";
  owner.mayFallBack = false;
  owner.device.findOutputs();
  EXPECT_FALSE(owner.device.start());
  EXPECT_EQ(owner.second->starts, 0);
  owner.mayFallBack = true;
  owner.device.findOutputs();
  EXPECT_EQ(owner.first->searches, 2);
  EXPECT_EQ(owner.second->searches, 1) << "of the cards, before anything was played";
  EXPECT_EQ(owner.second->starts, 0);
  EXPECT_TRUE(owner.device.start());
  EXPECT_TRUE(Owner::sounds(*owner.second));
  EXPECT_EQ(owner.second->chosen, "the loud one");
  owner.second->callbacks.outputsChanged({.present = {}, .used = "card"});
  EXPECT_EQ(owner.used, "card");
  EXPECT_EQ(owner.device.problem(), "");
  owner.device.pause();
  EXPECT_FALSE(owner.second->running);
  EXPECT_TRUE(owner.device.start());
  owner.second->lose("no card");
  EXPECT_EQ(owner.notices, 1);
  EXPECT_EQ(owner.device.problem(), "no server, and no card");

  owner.second->refusal.clear();
  EXPECT_TRUE(owner.device.start());
  owner.first->running = true;  // it went on trying
  EXPECT_FALSE(Owner::sounds(*owner.first)) << "both never play at once";
  EXPECT_TRUE(Owner::sounds(*owner.second));
  owner.first->recover();
  EXPECT_EQ(owner.notices, 2);
  EXPECT_TRUE(Owner::sounds(*owner.first));
  EXPECT_FALSE(owner.second->running);
  owner.second->callbacks.outputsChanged({.present = {}, .used = "another card"});
  EXPECT_EQ(owner.used, "server's") << "that of the one in charge";
  owner.device.pause();
  EXPECT_FALSE(owner.device.isRunning());
}

}  // namespace
}  // namespace tobrin
