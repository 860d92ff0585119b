#include "Shortcuts/DesktopShortcuts.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <thread>

#include "Input/GlobalHotkey.h"
#include "Support/Eventually.h"
#include "Support/TempFolder.h"
#include "Tools/Desktop/FakePortal.h"

namespace tobrin {
namespace {

using Kind = GlobalHotkey::Status::Kind;
using testing::eventually;
using testing::FakePortal;

constexpr Hotkey toggle{40, {Modifiers::control | Modifiers::option | Modifiers::command}};

Environment environmentOf(std::map<std::string, std::string> values) {
  return [values = std::move(values)](const char* name) {
    const auto found = values.find(name);
    return found == values.end() ? "" : found->second;
  };
}

/// Types the shortcut into our own key events.
void typeChord(ShortcutService& service) {
  constexpr uint16_t chord[] = {59, 58, 55, 40};
  for (const uint16_t code : chord)
    service.observe({code, KeyAction::down, 0});
  for (const uint16_t code : chord)
    service.observe({code, KeyAction::up, 0});
}

class PortalTest : public ::testing::Test {
 protected:
  /// As one run of the program after the other does, with what was kept in between.
  void startAgain() {
    hotkey_.reset();
    service_.emplace(DesktopShortcuts::Memory{[this] { return kept_; },
                                              [this](const std::string& text) { kept_ = text; }},
                     environmentOf({{"XDG_SESSION_TYPE", "wayland"}}));
    hotkey_.emplace(*service_, [this] { ++presses_; });
    EXPECT_EQ(hotkey_->registerHotkey(toggle).kind, Kind::active);
  }
  [[nodiscard]] bool isBound() const { return service_->route() == ShortcutRoute::desktop; }
  [[nodiscard]] int pressesOfOneChord() {
    const int before = presses_;
    typeChord(*service_);
    return presses_ - before;
  }

  testing::PrivateBus bus_{"DBUS_SESSION_BUS_ADDRESS"};
  std::atomic<int> presses_{0};
  std::string kept_;  // written by the service's thread, read when that has ended
  std::optional<DesktopShortcuts> service_;
  std::optional<GlobalHotkey> hotkey_;
};

TEST_F(PortalTest, OwnKeysCountUntilThePortalAgrees) {
  startAgain();
  EXPECT_EQ(hotkey_->registerHotkey(Hotkey{200, {}}).kind, Kind::failed) << "no keyboard has it";
  EXPECT_EQ(hotkey_->registerHotkey(toggle).kind, Kind::active);
  EXPECT_EQ(pressesOfOneChord(), 1);

  std::optional<FakePortal> portal(std::in_place, FakePortal::Behaviour{});  // comes later
  ASSERT_TRUE(eventually([&] { return isBound(); }));
  EXPECT_EQ(portal->asked(), std::vector<std::string>{"CTRL+ALT+LOGO+k"});
  EXPECT_EQ(pressesOfOneChord(), 0) << "now the portal's to tell";
  hotkey_->registerHotkey(toggle);  // the same again
  EXPECT_TRUE(isBound()) << "nobody is asked twice";
  std::this_thread::sleep_for(std::chrono::milliseconds(200));  // not the press of before
  portal->activate();
  EXPECT_TRUE(eventually([&] { return presses_ == 2; }));

  portal.reset();
  ASSERT_TRUE(eventually([&] { return !isBound(); }));
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_EQ(pressesOfOneChord(), 1);
  hotkey_->unregister();
  EXPECT_EQ(pressesOfOneChord(), 0);
}

TEST_F(PortalTest, BindsOnlyWhatIsListedAndAsksOnce) {
  using Listing = FakePortal::Listing;
  const Listing none, ours = FakePortal::ours, other = {{"else", "Meta+L"}};
  const Listing unassigned = {{FakePortal::id, ""}};
  struct Row {
    const char* what;
    FakePortal::Behaviour behaviour;
    bool isBound;              // also in the runs after the first
    std::size_t asksOnReturn;  // in the second run
  };
  const Row rows[] = {{"an empty answer", {.bound = none}, false, 0},
                      {"another's id", {.bound = other}, false, 0},
                      {"no combination yet", {.bound = unassigned}, false, 0},
                      {"denied", {.code = 1}, false, 0},
                      {"no answer", {.answers = false}, false, 0},
                      {"agrees again without the user", {}, true, 1},
                      {"remembers by itself", {.known = ours}, true, 0},
                      {"takes it early", {.known = ours, .takesEarly = true}, true, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    kept_.clear();
    for (const bool isReturn : {false, true}) {
      FakePortal portal(row.behaviour);
      startAgain();
      const std::size_t asks =
          isReturn ? row.asksOnReturn : (row.behaviour.known.empty() ? 1U : 0U);
      ASSERT_TRUE(eventually([&] { return portal.hasListed() && portal.asked().size() >= asks; }));
      EXPECT_TRUE(eventually([&] { return isBound() == row.isBound; }));
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      EXPECT_EQ(isBound(), row.isBound);
      EXPECT_EQ(portal.asked().size(), asks);
      EXPECT_EQ(pressesOfOneChord(), row.isBound ? 0 : 1);
      for (const Listing& change : {ours, none}) {
        portal.change(change);
        EXPECT_TRUE(eventually([&] { return isBound() == (change == ours); }));
      }
      if (row.isBound) portal.change(ours);
      EXPECT_TRUE(eventually([&] { return isBound() == row.isBound; }));
      hotkey_->unregister();  // its thread has ended
    }
  }
}

TEST_F(PortalTest, ThePortalThatTheFirstCallStartsBindsToo) {
  const testing::TempFolder folder;
  folder.write("dbus-1/services/portal.service",
               "[D-BUS Service]\nName=org.freedesktop.portal.Desktop\nExec=/bin/sleep 5\n");
  setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
  const testing::PrivateBus startsServices("DBUS_SESSION_BUS_ADDRESS");
  unsetenv("XDG_DATA_HOME");
  startAgain();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  FakePortal portal({});
  EXPECT_TRUE(eventually([&] { return isBound(); }));
  hotkey_.reset();
  service_.reset();  // before its bus
}

TEST_F(PortalTest, ARequestThatIsTurnedDownIsMadeAgain) {
  for (int run = 0; run < 2; ++run) {
    FakePortal portal({.binds = false});
    startAgain();
    EXPECT_TRUE(eventually([&] { return portal.asked().size() == 1; })) << run;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    hotkey_->unregister();
  }
}

TEST_F(PortalTest, APressOfBothWaysCountsOnce) {
  FakePortal portal({.bound = {}});
  startAgain();
  const auto changes = std::make_shared<std::atomic<int>>(0);  // the service outlives this test
  service_->setOnChanged([changes] { ++*changes; });
  ASSERT_TRUE(eventually([&] { return !portal.asked().empty(); }));
  typeChord(*service_);
  portal.activate();
  ASSERT_TRUE(eventually([&] { return isBound() && *changes > 0; })) << "it tells all the same";
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(presses_, 1);
}

TEST(SystemShortcuts, AreThoseOfTheDesktopThatRuns) {
  const testing::TempFolder folder;
  const std::string config = folder.path().string();
  folder.write("kglobalshortcutsrc", "[a]\nLaunch=Meta+K,none,Launch\n");
  const auto program = folder.write("gsettings", R"(#!/bin/sh
case $1 in
  get) echo "'<Super>F9'" ;;
  *) echo "org.gnome.shell.keybindings toggle ['<Super>s']"
     echo "org.gnome.Terminal.Legacy.Keybindings:/x/ new-tab '<Super>t'"
     echo "org.gnome.settings-daemon.plugins.media-keys custom-keybindings ['/custom0/']" ;;
esac
. "${0%/*}/trouble"
)");
  const auto trouble = [&](const char* command) { folder.write("trouble", command); };
  trouble("");
  chmod(program.c_str(), 0755);
  const std::string path = std::getenv("PATH");
  setenv("PATH", (config + ":" + path).c_str(), 1);
  const auto isReserved = [](DesktopShortcuts& service, uint32_t keyCode) {
    return service.isReserved({keyCode, {Modifiers::command}});
  };
  const auto desktop = [&](const char* name) {
    return environmentOf({{"XDG_CURRENT_DESKTOP", name}, {"XDG_CONFIG_HOME", config}});
  };
  std::atomic<int> changes{0};  // before the services, whose threads count
  DesktopShortcuts gnome({}, desktop("ubuntu:GNOME")), kde({}, desktop("KDE")),
      sway({}, desktop("sway"));
  // The machine may be slow to run a program: then the answer comes later.
  const auto comesToBe = [&](bool reserved) {
    return eventually([&] { return isReserved(gnome, 1) == reserved; });
  };
  EXPECT_TRUE(comesToBe(true));
  EXPECT_TRUE(isReserved(gnome, 101)) << "the user's own, F9";
  EXPECT_FALSE(isReserved(gnome, 17)) << "an application's";
  trouble("exit 1");
  EXPECT_TRUE(comesToBe(false)) << "whatever it printed";
  trouble("");
  EXPECT_TRUE(comesToBe(true)) << "read afresh, with nothing changed on disk";
  trouble("exit 1");
  EXPECT_TRUE(comesToBe(false));

  gnome.setOnChanged([&] { ++changes; });
  trouble("sleep 0.5");
  EXPECT_FALSE(isReserved(gnome, 1)) << "is not waited for";
  EXPECT_TRUE(eventually([&] { return changes == 1; }));
  EXPECT_TRUE(isReserved(gnome, 1)) << "as last read, while it is read again";

  EXPECT_TRUE(isReserved(kde, 40));
  EXPECT_FALSE(isReserved(sway, 1));
  std::filesystem::remove(folder.path() / "kglobalshortcutsrc");
  folder.write("kglobalshortcutsrc/folder", "reading fails");
  EXPECT_FALSE(isReserved(kde, 40));
  setenv("PATH", path.c_str(), 1);
}

}  // namespace
}  // namespace tobrin
