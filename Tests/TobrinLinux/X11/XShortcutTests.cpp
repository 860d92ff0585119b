#include "X11/XShortcut.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "Support/Eventually.h"
#include "Tools/Desktop/PrivateXServer.h"

namespace tobrin {
namespace {

using Result = ShortcutGrab::Result;
using testing::PrivateXServer;

constexpr Hotkey toggle{40, {Modifiers::control | Modifiers::option | Modifiers::command}};

class XShortcutTest : public ::testing::Test {
 protected:
  void strike(std::initializer_list<uint8_t> keys) {
    server.press(keys);
    server.release(keys);
  }
  static void pause(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }
  /// Waits for `expected` presses, then a little for any that should not come.
  int await(int expected) {
    testing::eventually([&] { return presses >= expected; });
    pause(30);
    return presses;
  }
  PrivateXServer server;
  std::atomic<int> presses = 0;
  const std::function<void()> counter = [this] { ++presses; };  // on the shortcut's thread
};

TEST_F(XShortcutTest, RunsOnceAPressWhicheverLocksAreOn) {
  const XShortcut shortcut(server.display(), toggle, counter);
  ASSERT_EQ(shortcut.outcome(), ShortcutGrab{});
  server.press({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_K});
  pause(900);  // the server repeats held keys after 660 ms
  EXPECT_EQ(await(1), 1);
  server.release({KEY_K});
  pause(5);
  strike({KEY_K});
  EXPECT_EQ(await(2), 2);
  strike({KEY_J});
  server.release({KEY_LEFTMETA});
  strike({KEY_K});
  EXPECT_EQ(await(2), 2) << "another key, a modifier too few";

  int expected = 2;
  for (const int lock : {KEY_CAPSLOCK, KEY_NUMLOCK, KEY_CAPSLOCK}) {
    strike({static_cast<uint8_t>(lock)});
    server.press({KEY_RIGHTMETA});
    strike({KEY_K});
    server.release({KEY_RIGHTMETA});
    EXPECT_EQ(await(++expected), expected) << lock;
  }
}

TEST_F(XShortcutTest, SaysWhatCannotBeGrabbed) {
  const XShortcut first(server.display(), toggle, counter);
  EXPECT_EQ(XShortcut(server.display(), toggle, [] {}).outcome().result, Result::taken);
  EXPECT_EQ(XShortcut(server.display(), {9999, {}}, [] {}).outcome().result, Result::failed);
  EXPECT_EQ(XShortcut(":987", toggle, [] {}).outcome().error, ShortcutService::unavailable);
}

TEST_F(XShortcutTest, FollowsAModifierToItsNewBit) {
  const XShortcut shortcut(server.display(), toggle, counter);
  // Super moves from Mod4 to Mod3: what `xmodmap -e "clear mod4" -e "add mod3 = Super_L"` does.
  xcb_connection_t* other = server.connection();
  XReply<xcb_get_modifier_mapping_reply_t> map(
      xcb_get_modifier_mapping_reply(other, xcb_get_modifier_mapping(other), nullptr));
  const unsigned keys = map->keycodes_per_modifier;
  xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(map.get());
  std::copy(codes + 6 * keys, codes + 7 * keys, codes + 5 * keys);
  std::fill(codes + 6 * keys, codes + 7 * keys, xcb_keycode_t{0});
  const XReply<xcb_set_modifier_mapping_reply_t> done(xcb_set_modifier_mapping_reply(
      other, xcb_set_modifier_mapping(other, static_cast<uint8_t>(keys), codes), nullptr));
  ASSERT_TRUE(done && done->status == XCB_MAPPING_STATUS_SUCCESS);
  pause(200);
  server.press({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA});
  strike({KEY_K});
  EXPECT_EQ(await(1), 1);
}

}  // namespace
}  // namespace tobrin
