#include "Input/Accelerator.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tobrin {
namespace {

constexpr uint32_t command = Modifiers::command;
constexpr uint32_t controlOption = Modifiers::control | Modifiers::option;

TEST(Accelerator, ReadsBothWaysOfWritingCombinations) {
  const struct {
    std::optional<Accelerator> (*read)(std::string_view);
    const char* text;
    std::optional<Accelerator> result;
  } rows[] = {
      {Accelerator::fromGtk, "<Primary><Alt>Page_Up", Accelerator{{controlOption}, "prior"}},
      {Accelerator::fromGtk, "<Hyper>k", std::nullopt},
      {Accelerator::fromGtk, "<Super", std::nullopt},
      {Accelerator::fromQt, "Ctrl+Alt+PgUp", Accelerator{{controlOption}, "prior"}},
      {Accelerator::fromQt, "Meta++", Accelerator{{command}, "+"}},
      {Accelerator::fromQt, "Ctrl+", std::nullopt},
      {Accelerator::fromQt, "Hyper+K", std::nullopt},
      {Accelerator::fromQt, "", std::nullopt},
  };
  for (const auto& row : rows)
    EXPECT_TRUE(row.read(row.text) == row.result) << row.text;
}

TEST(Accelerator, FindsTheDesktopsOwnShortcutsByTheLayoutsNames) {
  const auto gnome = acceleratorsInGsettings(
      "org.gnome.desktop.wm.keybindings switch-input-source ['<Super>space', 'XF86Keyboard']\n"
      "org.gnome.desktop.wm.keybindings close @as []\n"
      "org.gnome.settings-daemon.plugins.media-keys screensaver ['<Super>l']\n"
      "'<Control><Alt>t'\n"
      "org.gnome.shell.keybindings broken ['<Super>k");
  const auto kde = acceleratorsInKGlobalShortcuts(
      "[kwin]\n_k_friendly_name=Meta+K\nWindow Close=Alt+F4\\tMeta+Esc,Alt+F4,Close Window\n"
      "Switch=none,Meta+L,Lock\nZoom=Meta+\\\\,,Meta+\\\\,,Zoom\n"
      "[services][org.kde.konsole.desktop]\n_launch=Ctrl+Alt+T\n");
  const struct {
    const char* label;
    const std::vector<Accelerator>& list;
    Hotkey hotkey;
    KeyNaming naming;
    bool reserved;
  } rows[] = {
      {"GNOME input source", gnome, {49, {command}}, {"space", " "}, true},
      {"GNOME, other modifiers", gnome, {37, {controlOption}}, {"l", "l"}, false},
      {"GNOME, custom", gnome, {17, {controlOption}}, {"t", "t"}, true},
      {"GNOME, other layout", gnome, {37, {command}}, {"n", "n"}, false},
      {"GNOME, cut off", gnome, {40, {command}}, {"k", "k"}, false},
      {"KDE second choice", kde, {53, {command}}, {"Escape", ""}, true},
      {"KDE, default not active", kde, {37, {command}}, {"l", "l"}, false},
      {"KDE comma", kde, {43, {command}}, {"comma", ","}, true},
      {"KDE launcher", kde, {17, {controlOption}}, {"t", "t"}, true},
      {"KDE, a name is none", kde, {40, {command}}, {"k", "k"}, false},
  };
  for (const auto& row : rows) {
    const auto matches = [&](const auto& each) { return each.matches(row.hotkey, row.naming); };
    EXPECT_EQ(std::ranges::any_of(row.list, matches), row.reserved) << row.label;
  }
}

}  // namespace
}  // namespace tobrin
