#include "X11/XKeySource.h"

#include <gtest/gtest.h>

#include <thread>

#include "Input/KeyMonitor.h"
#include "Support/Eventually.h"
#include "Support/HeardKeys.h"
#include "Tools/Desktop/PrivateXServer.h"

namespace tobrin {
namespace {

using testing::HeardKeys;
using testing::PrivateXServer;

class XKeySourceTest : public ::testing::Test {
 protected:
  PrivateXServer server;
  HeardKeys heard;
  KeyMonitor monitor{std::make_unique<XKeySource>(server.display()), std::ref(heard),
                     testing::patient()};
};

TEST_F(XKeySourceTest, HearsKeysWhoeverHasTheKeyboard) {
  ASSERT_TRUE(monitor.start()) << monitor.problem();
  server.press({KEY_A, KEY_LEFTSHIFT, KEY_VOLUMEUP});
  server.release({KEY_VOLUMEUP, KEY_LEFTSHIFT, KEY_LEFTSHIFT, KEY_A});
  EXPECT_EQ(heard.await(4), "+0 +56 -56 -0 ");

  xcb_connection_t* other = server.connection();
  const auto root = firstScreen(other).root;
  const XReply<xcb_grab_keyboard_reply_t> grab(xcb_grab_keyboard_reply(
      other,
      xcb_grab_keyboard(other, 1, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
      nullptr));
  ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
  server.press({KEY_SPACE});
  std::this_thread::sleep_for(std::chrono::milliseconds(900));  // the server repeats after 660 ms
  server.release({KEY_SPACE});
  EXPECT_EQ(heard.await(2), "+49 -49 ");
}

TEST_F(XKeySourceTest, ABacklogOfAStalledListenerIsNotHeard) {
  XKeySource source(server.display());
  ASSERT_TRUE(source.open());
  server.press({KEY_A});
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const uint64_t before = MachTime::now();
  server.release({KEY_A});
  std::vector<double> ageMs;
  source.run([&](const KeySource::Event& event) {
    ASSERT_TRUE(event.time);
    ageMs.push_back(MachTime::delta(before, *event.time));
    if (ageMs.size() == 2) source.interrupt();
  });
  EXPECT_GT(ageMs[0], 250);
  EXPECT_LT(ageMs[1], 100);
}

TEST_F(XKeySourceTest, AServerThatComesBackIsHeardAgain) {
  std::optional<PrivateXServer> second(std::in_place);
  const std::string display = second->display();
  KeyMonitor other(std::make_unique<XKeySource>(display), std::ref(heard), testing::patient());
  ASSERT_TRUE(other.start());
  second->press({KEY_LEFTCTRL});
  EXPECT_EQ(heard.await(1), "+59 ");
  second.reset();
  EXPECT_EQ(heard.await(1), "-59 ");
  EXPECT_NE(other.problem(), "");
  second.emplace(display);
  EXPECT_TRUE(testing::eventually([&] { return other.isRunning(); }));
  EXPECT_EQ(other.problem(), "");
  second->press({KEY_B});
  EXPECT_EQ(heard.await(1), "+11 ");
}

TEST(XClock, TellsTimeAcrossTheWrapOfTheServersCounter) {
  const uint64_t now = ((1ULL << 32) + 20) * 1'000'000 + 999;  // 20 ms after the wrap
  const XClock clock(true);
  EXPECT_EQ(clock.ticks(0xFFFFFFF6U, now), ((1ULL << 32) - 10) * 1'000'000);
  EXPECT_EQ(clock.ticks(22, now), now);
  EXPECT_EQ(clock.ticks(500, now), std::nullopt);
  EXPECT_EQ(XClock(false).ticks(0, now), std::nullopt);
}

}  // namespace
}  // namespace tobrin
