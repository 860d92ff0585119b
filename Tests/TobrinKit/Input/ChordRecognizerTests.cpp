#include "Input/ChordRecognizer.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace tobrin {
namespace {

constexpr Hotkey toggle{40, {Modifiers::control | Modifiers::option | Modifiers::command}};

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
