#include "Shortcuts/DesktopShortcuts.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <map>
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

TEST(DesktopShortcuts, AWaylandSessionHearsItsOwnKeysUntilThePortalAgrees) {
  const testing::PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
  std::atomic<int> presses{0};
  DesktopShortcuts service(environmentOf({{"XDG_SESSION_TYPE", "wayland"}}));
  GlobalHotkey hotkey(service, [&] { ++presses; });
  EXPECT_EQ(hotkey.registerHotkey(Hotkey{200, {}}).kind, Kind::failed) << "no keyboard has it";
  EXPECT_EQ(hotkey.registerHotkey(toggle).kind, Kind::active);
  typeChord(service);
  EXPECT_EQ(presses, 1);

  std::optional<FakePortal> portal(std::in_place, 0U);  // comes later
  const auto isBound = [&] { return service.description() == "desktop portal"; };
  ASSERT_TRUE(eventually(isBound));
  EXPECT_EQ(portal->trigger(), "CTRL+ALT+LOGO+k");
  typeChord(service);
  EXPECT_EQ(presses, 1) << "now the portal's to tell";
  hotkey.registerHotkey(toggle);  // the same again
  EXPECT_TRUE(isBound()) << "nobody is asked twice";
  portal->activate();
  EXPECT_TRUE(eventually([&] { return presses == 2; }));

  portal.reset();
  ASSERT_TRUE(eventually([&] { return !isBound(); }));
  typeChord(service);
  EXPECT_EQ(presses, 3);
  portal.emplace(1U);
  ASSERT_TRUE(eventually([&] { return !portal->trigger().empty(); }));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(isBound()) << "refused";
  hotkey.unregister();
  typeChord(service);
  EXPECT_EQ(presses, 3);
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
  DesktopShortcuts gnome(desktop("ubuntu:GNOME")), kde(desktop("KDE")), sway(desktop("sway"));
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

  std::atomic<int> changes{0};
  gnome.setOnReservedChanged([&] { ++changes; });
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
