#include "X11/XShortcut.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>

#include "Support/PrivateXServer.h"

namespace tobrin {
namespace {

using Result = ShortcutGrab::Result;
using testing::PrivateXServer;

constexpr Hotkey toggle{40, {Modifiers::control | Modifiers::option | Modifiers::command}};

/// Counts presses on the shortcut's thread.
class Presses {
 public:
  std::function<void()> counter() {
    return [this] { count_.fetch_add(1, std::memory_order_relaxed); };
  }
  /// Waits for `expected` presses, then a little for any that should not come.
  int await(int expected) {
    for (int i = 0; i < 1000 && count_.load(std::memory_order_relaxed) < expected; ++i)
      pause(5);
    pause(30);
    return count_.load(std::memory_order_relaxed);
  }
  static void pause(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

 private:
  std::atomic<int> count_{0};
};

class XShortcutTest : public ::testing::Test {
 protected:
  void strike(std::initializer_list<uint8_t> keys) {
    server.press(keys);
    server.release(keys);
  }
  PrivateXServer server;
  Presses presses;
};

TEST_F(XShortcutTest, RunsOnceAPressWhicheverLocksAreOn) {
  const XShortcut shortcut(server.display(), toggle, presses.counter());
  ASSERT_EQ(shortcut.outcome(), ShortcutGrab{});
  server.press({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_K});
  Presses::pause(900);  // the server repeats held keys after 660 ms
  EXPECT_EQ(presses.await(1), 1);
  server.release({KEY_K});
  Presses::pause(5);
  strike({KEY_K});
  EXPECT_EQ(presses.await(2), 2);
  strike({KEY_J});
  server.release({KEY_LEFTMETA});
  strike({KEY_K});
  EXPECT_EQ(presses.await(2), 2) << "another key, a modifier too few";

  int expected = 2;
  for (const int lock : {KEY_CAPSLOCK, KEY_NUMLOCK, KEY_CAPSLOCK}) {
    strike({static_cast<uint8_t>(lock)});
    server.press({KEY_RIGHTMETA});
    strike({KEY_K});
    server.release({KEY_RIGHTMETA});
    EXPECT_EQ(presses.await(++expected), expected) << lock;
  }
}

TEST_F(XShortcutTest, ASecondProgramGetsItOnceTheFirstHasLeftIt) {
  std::optional<XShortcut> first(std::in_place, server.display(), toggle, presses.counter());
  ASSERT_EQ(first->outcome().result, Result::granted);
  const auto outcome = [&](const Hotkey& hotkey) {
    return XShortcut(server.display(), hotkey, [] {}).outcome().result;
  };
  EXPECT_EQ(outcome(toggle), Result::taken);
  EXPECT_EQ(outcome({40, {Modifiers::control | Modifiers::option}}), Result::granted);
  EXPECT_EQ(outcome({46, toggle.modifiers}), Result::granted);
  EXPECT_EQ(outcome({9999, toggle.modifiers}), Result::failed) << "no such key";
  first.reset();
  EXPECT_EQ(outcome(toggle), Result::granted);
  EXPECT_EQ(XShortcut(":987", toggle, [] {}).outcome().error, ShortcutService::unavailable);
}

TEST_F(XShortcutTest, FollowsAModifierToItsNewBit) {
  const XShortcut shortcut(server.display(), toggle, presses.counter());
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
  Presses::pause(200);
  server.press({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA});
  strike({KEY_K});
  EXPECT_EQ(presses.await(1), 1);
}

}  // namespace
}  // namespace tobrin
