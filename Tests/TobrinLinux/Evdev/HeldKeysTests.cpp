#include "Evdev/HeldKeys.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <map>

namespace tobrin {
namespace {

using Change = HeldKeys::Change;
using Type = KeySource::EventType;

TEST(HeldKeys, TellsModifiersByTheirFlagsAndReleasesWhatAVanishedKeyboardHeld) {
  HeldKeys keys;
  const auto take = [&](uint32_t key, Change change) { return keys.take(key, change, 7); };
  const auto shift = take(KEY_LEFTSHIFT, Change::press);
  ASSERT_TRUE(shift);
  EXPECT_EQ(shift->type, Type::flagsChanged);
  EXPECT_EQ(shift->flags, 0x2U);
  EXPECT_EQ(take(KEY_RIGHTSHIFT, Change::press)->flags, 0x6U);
  EXPECT_EQ(take(KEY_LEFTSHIFT, Change::release)->flags, 0x4U);
  EXPECT_FALSE(take(KEY_RIGHTSHIFT, Change::repeat));
  EXPECT_EQ(take(KEY_CAPSLOCK, Change::press)->type, Type::flagsChanged);
  EXPECT_FALSE(take(KEY_CAPSLOCK, Change::release));
  EXPECT_EQ(take(KEY_A, Change::press)->type, Type::keyDown);
  EXPECT_TRUE(take(KEY_A, Change::repeat)->autorepeat);
  EXPECT_EQ(take(KEY_A, Change::repeat)->time, 7U);
  EXPECT_FALSE(take(KEY_VOLUMEDOWN, Change::press));

  std::map<uint16_t, Type> released;
  keys.releaseAll(9, [&](const KeySource::Event& event) {
    released[event.code] = event.type;
    EXPECT_EQ(event.flags, event.code == 60 ? 0U : 0x4U);
  });
  EXPECT_EQ(released, (std::map<uint16_t, Type>{{0, Type::keyUp}, {60, Type::flagsChanged}}));
  keys.releaseAll(9, [](const KeySource::Event&) { FAIL() << "nothing is held any more"; });
}

}  // namespace
}  // namespace tobrin
