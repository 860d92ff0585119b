#include "Input/GlobalHotkey.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "Input/ChordRecognizer.h"
#include "Support/DeskShortcuts.h"

namespace tobrin {
namespace {

using Kind = GlobalHotkey::Status::Kind;
using Result = ShortcutGrab::Result;

constexpr Hotkey toggle{40, {Modifiers::control | Modifiers::option | Modifiers::command}};

TEST(GlobalHotkey, EveryOutcomeIsAStatusAndHoldsNothingItShouldNot) {
  const std::tuple<bool, ShortcutGrab, Kind> rows[] = {
      {false, {}, Kind::active},
      {false, {Result::taken, 0}, Kind::taken},
      {true, {}, Kind::reservedBySystem},
      {false, {Result::failed, -19}, Kind::failed}};
  for (const auto& [reserved, answer, kind] : rows) {
    testing::ShortcutDesk desk{answer, reserved, nullptr};
    testing::DeskShortcuts service(desk);
    GlobalHotkey hotkey(service, [] {});
    EXPECT_EQ(hotkey.registerHotkey(toggle), (GlobalHotkey::Status{kind, toggle, answer.error}));
    EXPECT_EQ(desk.pressed != nullptr, kind == Kind::active);
    EXPECT_EQ(hotkey.registerHotkey(std::nullopt).kind, Kind::off);
    EXPECT_EQ(desk.pressed, nullptr);
  }
}

TEST(GlobalHotkey, ANewShortcutReplacesTheOldAndDestructionReleases) {
  testing::ShortcutDesk desk;
  testing::DeskShortcuts service(desk);
  {
    GlobalHotkey hotkey(service, [] {});
    hotkey.registerHotkey(toggle);
    desk.reserved = true;
    EXPECT_EQ(hotkey.registerHotkey(Hotkey{49, {Modifiers::command}}).kind, Kind::reservedBySystem);
    EXPECT_EQ(desk.pressed, nullptr);  // the first one is gone although the second never came
    desk.reserved = false;
    hotkey.registerHotkey(toggle);
  }
  EXPECT_EQ(desk.pressed, nullptr);
}

TEST(ChordRecognizer, HearsExactlyItsCombinationOnceAPress) {
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

}  // namespace
}  // namespace tobrin
