#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "Input/Accelerator.h"
#include "Input/ChordRecognizer.h"
#include "Input/Hotkey.h"

namespace tobrin {
namespace {

constexpr Hotkey toggle{40, {Modifiers::control | Modifiers::option | Modifiers::command}};

TEST(ChordRecognizer, SeesExactlyItsCombinationOnceAPress) {
  ChordRecognizer chords;
  int presses = 0;
  const auto down = [&](uint16_t code) { chords.observe({code, KeyAction::down, 0}); };
  const auto up = [&](uint16_t code) { chords.observe({code, KeyAction::up, 0}); };
  down(62);  // held since before the combination was set
  chords.set(toggle, [&] { ++presses; });

  for (const uint16_t code : std::initializer_list<uint16_t>{57, 58, 54, 40})
    down(code);
  EXPECT_EQ(presses, 1) << "right Control, left Option, right Command; Caps Lock aside";
  up(40);
  down(56);
  down(40);
  EXPECT_EQ(presses, 1) << "Shift is one modifier too many";
  up(56);
  up(54);
  down(40);
  EXPECT_EQ(presses, 1) << "Command is missing";
  down(55);
  down(40);
  EXPECT_EQ(presses, 2);
  chords.clear();
  down(40);
  EXPECT_EQ(presses, 2);
}

TEST(Hotkey, ShowsModifiersInOrderThenTheKey) {
  const auto naming = [](const char* text) {
    return [text](uint32_t) { return std::optional<std::string>(text); };
  };
  const struct {
    Hotkey hotkey;
    Hotkey::KeyName keyName;
    const char* shown;
    const char* spelledOut;
  } rows[] = {
      {Hotkey::presets()[0], nullptr, "⌃⌥⌘K", "Ctrl+Alt+Super+K"},
      {{49, {0xF}}, naming(" "), "⌃⌥⇧⌘Space", "Ctrl+Alt+Shift+Super+Bar"},
      {{33, {Modifiers::shift}}, naming("é"), "⇧É", "Shift+É"},
      {{33, {}}, naming(""), "[", "["},
      {{200, {0x10}}, [](uint32_t) { return std::nullopt; }, "Key 200", "Key 200"},
      {{4294967295, {}}, naming("ß"), "SS", "SS"},
  };
  constexpr PlatformWords::KeyLabel labels[] = {{49, "Bar"}};
  const PlatformWords words{
      .modifiers = {"Ctrl", "Alt", "Shift", "Super"}, .keySeparator = "+", .keys = labels};
  for (const auto& row : rows) {
    EXPECT_EQ(row.hotkey.displayString(row.keyName), row.shown);
    EXPECT_EQ(row.hotkey.spelledOut(words, row.keyName), row.spelledOut);
  }
}

constexpr uint32_t command = Modifiers::command;
constexpr uint32_t controlOption = Modifiers::control | Modifiers::option;

TEST(Accelerator, FindsTheDesktopsOwnShortcutsByTheLayoutsNames) {
  const auto gnome = acceleratorsInGsettings(
      "org.gnome.desktop.wm.keybindings switch-input-source ['<Super>space', '<Super><Hyper>k']\n"
      "org.gnome.desktop.wm.keybindings close @as []\n"
      "org.gnome.settings-daemon.plugins.media-keys screensaver ['<Super>l']\n"
      "'<Primary><Alt>Page_Up'\n"
      "org.gnome.shell.keybindings broken ['<Super>k");
  const auto kde = acceleratorsInKGlobalShortcuts(
      "[kwin]\n_k_friendly_name=Meta+K\nWindow Close=Alt+F4\\tMeta+Esc,Alt+F4,Close Window\n"
      "Switch=none,Meta+L,Lock\nZoom=Meta+\\\\,,Meta+\\\\,,Zoom\n"
      "In=Meta++,,In\nours=Meta+O,,Ours\nNone=Ctrl+,Ctrl+,None\nOdd=Meta+Hyper+K,none,Odd\n["
      "services][org.kde.konsole."
      "desktop]\n_launch=Ctrl+"
      "Alt+PgUp\n",
      "ours");
  const struct {
    const char* label;
    const std::vector<Accelerator>& list;
    Hotkey hotkey;
    KeyNaming naming;
    bool reserved;
  } rows[] = {
      {"GNOME input source", gnome, {49, {command}}, {"space", " "}, true},
      {"GNOME, other modifiers", gnome, {37, {controlOption}}, {"l", "l"}, false},
      {"GNOME, custom", gnome, {116, {controlOption}}, {"Prior", ""}, true},
      {"GNOME, other layout", gnome, {37, {command}}, {"n", "n"}, false},
      {"GNOME, cut off, another modifier", gnome, {40, {command}}, {"k", "k"}, false},
      {"KDE second choice", kde, {53, {command}}, {"Escape", ""}, true},
      {"KDE, default not active", kde, {37, {command}}, {"l", "l"}, false},
      {"KDE comma", kde, {43, {command}}, {"comma", ","}, true},
      {"KDE plus", kde, {24, {command}}, {"plus", "+"}, true},
      {"KDE launcher", kde, {116, {controlOption}}, {"Prior", ""}, true},
      {"KDE, ours", kde, {31, {command}}, {"o", "o"}, false},
      {"KDE, a name is none", kde, {40, {command}}, {"k", "k"}, false},
  };
  for (const auto& row : rows) {
    const auto matches = [&](const auto& each) { return each.matches(row.hotkey, row.naming); };
    EXPECT_EQ(std::ranges::any_of(row.list, matches), row.reserved) << row.label;
  }
}

TEST(Accelerator, KnowsEveryNameOfModifiersAndKeys) {
  const auto read = [](const std::vector<Accelerator>& list) {
    std::string text;
    for (const Accelerator& each : list)
      text += std::to_string(each.modifiers.rawValue) + each.key + " ";
    return text;
  };
  EXPECT_EQ(read(acceleratorsInGsettings("'<Control>A' '<Ctrl>Z' '<ctl>c' '<Primary>d' '<Alt>e' "
                                         "'<Mod1>f' '<Shift>g' '<Shft>h' '<Super>i' '<Mod4>j' "
                                         "'<Meta>k' 'disabled' \"Above_Tab\" '' '<Shift><Ctl>'")),
            "1a 1z 1c 1d 2e 2f 4g 4h 8i 8j 2k 0grave ");
  EXPECT_EQ(read(acceleratorsInKGlobalShortcuts(
                "a=Ctrl+Esc\\tAlt+PgUp\\tShift+Page_Up\\tMeta+PgDown\\tPgDn\\tPage_Down,x\n"
                "no equals sign\nnothing=,x\nnor=None,x\nb=Del\\tIns\\tEnter\\tSysReq\\tF1,x\n",
                "ours")),
            "1escape 2prior 4prior 8next 0next 0next 0delete 0insert 0return 0print 0f1 ");
}

}  // namespace
}  // namespace tobrin
