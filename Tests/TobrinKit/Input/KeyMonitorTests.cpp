#include "Input/KeyMonitor.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "Base/MachTime.h"
#include "Input/ChordRecognizer.h"
#include "Support/ScriptedKeySource.h"

namespace tobrin {
namespace {

using testing::KeyScript;
using testing::ScriptedKeySource;
using Type = KeySource::EventType;

constexpr uint64_t startOfTime = 10'000'000'000;
constexpr uint64_t oneMs = 1'000'000;

class KeyMonitorTest : public ::testing::Test {
 protected:
  KeyScript script;
  uint64_t clock = startOfTime;  // written only while no event is on its way
  std::vector<KeyEvent> heard;
  ChordRecognizer chords;
  int threads = 0;

  void expectHeard(const std::vector<KeyEvent>& expected) {
    EXPECT_EQ(heard, expected);
    heard.clear();
  }

  KeyMonitor monitor{std::make_unique<ScriptedKeySource>(script),
                     [this](const KeyEvent& event) { heard.push_back(event); },
                     {.onThreadStart = [this](std::string_view) { ++threads; },
                      .observer = [this](const KeyEvent& event) { chords.observe(event); },
                      .now = [this] { return clock; },
                      .firstRetry = std::chrono::milliseconds(1),
                      .longestRetry = std::chrono::milliseconds(2)}};
};

TEST_F(KeyMonitorTest, ABacklogIsDroppedButModifiersStayRight) {
  const KeyEvent shortcut;  // no event looks like this
  chords.set({1, {Modifiers::shift}}, [&] { heard.push_back(shortcut); });
  ASSERT_TRUE(monitor.start());
  const auto send = [&](Type type, uint16_t code, uint32_t flags, uint64_t ageMs) {
    script.send({type, code, false, flags, clock - ageMs * oneMs});
  };
  send(Type::keyDown, 0, 0, 251);
  send(Type::keyUp, 0, 0, 251);
  send(Type::flagsChanged, 56, 0x2, 400);  // a stale press is not heard, yet it counts
  send(Type::keyDown, 1, 0x2, 250);
  script.send({Type::keyDown, 1, true, 0x2, clock});  // held, so it repeats
  send(Type::flagsChanged, 56, 0x2, 0);
  send(Type::flagsChanged, 56, 0, 0);
  send(Type::flagsChanged, 56, 0x2, 0);
  send(Type::flagsChanged, 56, 0, 400);
  send(Type::keyDown, 1, 0, 0);
  send(Type::flagsChanged, 57, 0, 0);  // Caps Lock off again is a press as well
  script.send({Type::keyUp, 1, false, 0, clock + 5 * oneMs});  // a stamp ahead of the clock
  monitor.stop();
  expectHeard({{1, KeyAction::down, clock},
               shortcut,
               {56, KeyAction::up, clock},
               {56, KeyAction::down, clock},
               {1, KeyAction::down, clock},
               {57, KeyAction::down, clock},
               {1, KeyAction::up, clock}});
}

TEST_F(KeyMonitorTest, KeyboardsOfProgramsThatTypeAreHeldBackAndDisturbNoOther) {
  constexpr std::string_view real = "A keyboard", program = "YDOTOOLD virtual device";
  const auto send = [&](std::string_view keyboard, Type type, uint16_t code, uint32_t flags = 0) {
    script.send({type, code, false, flags, clock, keyboard});
  };
  ASSERT_TRUE(monitor.start());
  monitor.holdBack({"", "ydoTool"});  // no name names no keyboard
  send(real, Type::keyDown, 0);
  send(real, Type::flagsChanged, 56, 0x2);
  for (const uint16_t code : std::to_array<uint16_t>({0, 1})) {
    send(program, Type::flagsChanged, 56, 0x2);
    send(program, Type::keyDown, code);
    send(program, Type::keyUp, code);
    send(program, Type::flagsChanged, 56, 0);
  }
  send(program, Type::flagsChanged, 57);  // Caps Lock, which shows its presses alone
  send(real, Type::keyUp, 0);
  send(real, Type::flagsChanged, 56, 0);
  send(program, Type::flagsChanged, 56, 0x2);
  send(program, Type::flagsChanged, 56, 0);
  send(program, Type::keyDown, 2);
  send(real, Type::flagsChanged, 56, 0x2);
  monitor.holdBack({"a keyboard"});
  send(program, Type::keyUp, 2);          // goes the way of its press
  send(real, Type::flagsChanged, 56, 0);  // likewise
  send(program, Type::keyDown, 3);
  monitor.stop();
  expectHeard({{0, KeyAction::down, clock},
               {56, KeyAction::down, clock},
               {0, KeyAction::up, clock},
               {56, KeyAction::up, clock},
               {56, KeyAction::down, clock},
               {56, KeyAction::up, clock},
               {3, KeyAction::down, clock}});
}

TEST_F(KeyMonitorTest, StartsOnceStopsAndStartsAgain) {
  monitor.stop();  // before any start
  for (int round = 1; round <= 20; ++round) {
    EXPECT_TRUE(monitor.start());
    EXPECT_TRUE(monitor.start());
    EXPECT_EQ(threads, round);
    script.press(49);
    monitor.stop();
    EXPECT_FALSE(monitor.isRunning());
  }
  EXPECT_EQ(heard.size(), 20U);
}

TEST_F(KeyMonitorTest, ALostSourceIsTakenUpAgain) {
  ASSERT_TRUE(monitor.start());
  script.allowed = false;
  const uint64_t lost = machNow();
  script.lose();
  script.awaitOpens(10);  // refused again and again since
  EXPECT_GE(machDelta(machNow(), lost), 1 + 8 * 2) << "it waits between";
  EXPECT_FALSE(monitor.isRunning());
  EXPECT_FALSE(monitor.start());  // asks at once
  EXPECT_EQ(monitor.problem(), "not allowed");
  script.allowed = true;
  EXPECT_TRUE(monitor.start());
  script.lose();
  script.press(49);  // taken once it listens again
  monitor.stop();
  expectHeard({{49, KeyAction::down, startOfTime}});
  EXPECT_EQ(threads, 3);
  EXPECT_EQ(script.closes, 5) << "after each loss and each end";
}

}  // namespace
}  // namespace tobrin
