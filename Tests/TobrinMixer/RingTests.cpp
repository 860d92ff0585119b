#include <gtest/gtest.h>

#include <thread>

#include "CommandRing.h"
#include "MixerFixture.h"

namespace tobrin {
namespace {

TEST(CommandRing, RefusesWhatExceedsItsCapacityAndCountsIt) {
  const MixerHandle mixer = makeMixer();
  const TBCommand command = commandOf(TB_COMMAND_RELEASE_ALL);
  for (int n = 0; n < TB_RING_CAPACITY; ++n)
    ASSERT_TRUE(tb_mixer_push(mixer.get(), &command));
  EXPECT_FALSE(tb_mixer_push(mixer.get(), &command));
  EXPECT_EQ(tb_mixer_dropped_commands(mixer.get()), 1U);
  renderBlock(mixer.get(), 0);
  EXPECT_TRUE(tb_mixer_push(mixer.get(), &command));
}

// Every field of a command tells its number, so that a slot read too early or too late shows.
TEST(CommandRing, HandsEveryCommandOverWholeAndInOrderAcrossTheWrapOfItsCounts) {
  constexpr uint32_t total = 200'000;
  CommandRing ring(uint32_t{0} - total / 2);
  std::thread producer([&] {
    for (uint32_t n = 1; n <= total;) {
      TBCommand command = commandOf(n, ~n, static_cast<float>(n));
      command.layers[3].frames = n;
      if (ring.push(command)) ++n;
    }
  });
  uint32_t received = 0;
  bool whole = true;
  while (received < total) {
    ring.drain([&](const TBCommand& command) {
      ++received;
      whole = whole && command.type == received && command.tag == ~received &&
              command.weights[0] == static_cast<float>(received) &&
              command.layers[3].frames == received;
    });
  }
  producer.join();
  EXPECT_TRUE(whole);
}

}  // namespace
}  // namespace tobrin
