#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <thread>

#include "Front/SessionFront.h"
#include "Input/KeyMonitor.h"
#include "Support/Eventually.h"
#include "Support/HeardKeys.h"
#include "Tools/Desktop/PrivateXServer.h"
#include "X11/XKeySource.h"
#include "X11/XShortcut.h"

namespace tobrin {
namespace {

using testing::HeardKeys;
using testing::PrivateXServer;

class XKeySourceTest : public ::testing::Test {
 protected:
  std::optional<PrivateXServer> server{std::in_place};
  HeardKeys heard;
  KeyMonitor monitor{std::make_unique<XKeySource>(server->display()), std::ref(heard),
                     testing::patient()};
};

TEST_F(XKeySourceTest, GetsKeysWhileAnotherProgramHasTheKeyboard) {
  ASSERT_TRUE(monitor.start()) << monitor.problem();
  server->press({KEY_A, KEY_LEFTSHIFT, KEY_VOLUMEUP});
  server->release({KEY_VOLUMEUP, KEY_LEFTSHIFT, KEY_LEFTSHIFT, KEY_A});
  EXPECT_EQ(heard.await(4), "+0 +56 -56 -0 ");

  xcb_connection_t* other = server->connection();
  const auto root = firstScreen(other).root;
  const XReply<xcb_grab_keyboard_reply_t> grab(xcb_grab_keyboard_reply(
      other,
      xcb_grab_keyboard(other, 1, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
      nullptr));
  ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
  server->press({KEY_SPACE});
  std::this_thread::sleep_for(std::chrono::milliseconds(900));  // the server repeats after 660 ms
  server->release({KEY_SPACE});
  EXPECT_EQ(heard.await(2), "+49 -49 ");
  monitor.holdBack({"XTest keyboard"});
  server->press({KEY_A});
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  monitor.holdBack({});
  server->release({KEY_A});
  server->press({KEY_LEFTCTRL});
  EXPECT_EQ(heard.await(1), "+59 ");
  server.reset();
  EXPECT_EQ(heard.await(1), "-59 ") << "nothing is held of a server that has gone";
}

TEST_F(XKeySourceTest, DropsTheBacklogOfAStalledListener) {
  XKeySource source(server->display());
  ASSERT_TRUE(source.open());
  server->press({KEY_A});
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const uint64_t before = machNow();
  server->release({KEY_A});
  std::vector<double> ageMs;
  source.run([&](const KeySource::Event& event) {
    ASSERT_TRUE(event.time);
    ageMs.push_back(machDelta(before, *event.time));
    if (ageMs.size() == 2) source.interrupt();
  });
  EXPECT_GT(ageMs[0], 250);
  EXPECT_LT(ageMs[1], 100);
}

/// What a window manager and applications write.
class XFrontTest : public ::testing::Test {
 protected:
  xcb_atom_t atom(const std::string& name) {
    const XReply<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(
        other, xcb_intern_atom(other, 0, static_cast<uint16_t>(name.size()), name.data()),
        nullptr));
    return answer->atom;
  }
  void set(xcb_window_t window, const char* name, const std::vector<uint32_t>& values) {
    xcb_change_property(other, XCB_PROP_MODE_REPLACE, window, atom(name), XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(values.size()), values.data());
    xcb_flush(other);
  }
  xcb_window_t makeWindow(const std::string& classes) {
    const xcb_window_t window = xcb_generate_id(other);
    xcb_create_window(other, 0, window, root, 0, 0, 9, 9, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, 0, 0,
                      nullptr);
    xcb_change_property(other, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<uint32_t>(classes.size()), classes.data());
    return window;
  }
  bool becomes(const Front& expected) {
    return testing::eventually([&] {
      const std::scoped_lock lock(mutex);
      return last == expected;
    });
  }

  PrivateXServer server;
  xcb_connection_t* const other = server.connection();
  const xcb_window_t root = firstScreen(other).root;
  std::mutex mutex;
  Front last;
  const std::unique_ptr<FrontWindow> front = makeFrontWindow([this](const char* name) {
    return std::string_view(name) == "DISPLAY" ? std::optional(server.display()) : std::nullopt;
  });
};

TEST_F(XFrontTest, FollowsWhatTheWindowManagerTells) {
  front->start([this](const Front& now) {
    const std::scoped_lock lock(mutex);
    last = now;
  });
  const Front unknown{.knowledge = Front::Knowledge::windowManagerDoesNotTell};
  EXPECT_TRUE(becomes(unknown)) << "no window manager";
  const auto manager = makeWindow(""), editor = makeWindow(std::string("inst\0Editor\0", 12)),
             player = makeWindow(std::string("player\0", 7));
  set(root, "_NET_ACTIVE_WINDOW", {editor});
  set(manager, "_NET_SUPPORTING_WM_CHECK", {manager});
  set(root, "_NET_SUPPORTED", {atom("_NET_ACTIVE_WINDOW")});
  set(root, "_NET_SUPPORTING_WM_CHECK", {manager});
  EXPECT_TRUE(becomes({.app = "Editor"}));
  set(editor, "_NET_WM_STATE", {atom("_NET_WM_STATE_MODAL"), atom("_NET_WM_STATE_FULLSCREEN")});
  EXPECT_TRUE(becomes({.app = "Editor", .fillsScreen = true}));
  set(root, "_NET_ACTIVE_WINDOW", {player});
  EXPECT_TRUE(becomes({.app = "player"}));
  set(root, "_NET_ACTIVE_WINDOW", {root});  // as some say of an empty screen
  EXPECT_TRUE(becomes({}));
  set(root, "_NET_ACTIVE_WINDOW", {player});
  EXPECT_TRUE(becomes({.app = "player"}));
  xcb_destroy_window(other, player);  // before the window manager says so
  set(root, "_NET_ACTIVE_WINDOW", {XCB_NONE});
  EXPECT_TRUE(becomes({}));
  xcb_destroy_window(other, manager);
  set(root, "_NET_ACTIVE_WINDOW", {editor});
  EXPECT_TRUE(becomes(unknown)) << "it has ended and left its words behind";
  front->stop();
}

TEST(XClock, KeepsTimeAcrossTheWrapOfTheServersCounter) {
  const uint64_t now = ((1ULL << 32) + 20) * 1'000'000 + 999;  // 20 ms after the wrap
  const XClock clock(true);
  EXPECT_EQ(clock.ticks(0xFFFFFFF6U, now), ((1ULL << 32) - 10) * 1'000'000);
  EXPECT_EQ(clock.ticks(22, now), now);
  EXPECT_EQ(clock.ticks(500, now), std::nullopt);
  EXPECT_EQ(XClock(false).ticks(0, now), std::nullopt);
}

using Result = ShortcutGrab::Result;

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

TEST_F(XShortcutTest, RunsOnceAPressWithAnyLocksOn) {
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
