#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <map>

#include "Evdev/HeldKeys.h"
#include "Evdev/KeyCodes.h"
#include "Input/KeyLayout.h"

namespace tobrin {
namespace {

TEST(KeyCodes, EveryKeyWithAPlaceIsReachedFromTheKernelInReadingOrder) {
  // The kernel numbers each row of the main block from left to right, and so do the columns.
  constexpr std::pair<uint32_t, uint32_t> rows[] = {
      {KEY_1, KEY_BACKSPACE},  {KEY_TAB, KEY_RIGHTBRACE}, {KEY_A, KEY_APOSTROPHE},
      {KEY_Z, KEY_RIGHTSHIFT}, {KEY_F1, KEY_F10},         {KEY_F11, KEY_F12}};
  for (const auto& [first, last] : rows) {
    double left = 0;
    for (uint32_t key = first; key <= last; ++key) {
      const double column = KeyLayout::column(KeyCodes::virtualCode(key).value()).value();
      EXPECT_GT(column, left) << key;
      left = column;
    }
  }
  for (uint16_t code = 0; code < 128; ++code)
    EXPECT_NE(KeyLayout::column(code).has_value(), KeyCodes::kernelCodes(code).empty()) << code;
  EXPECT_EQ(KeyCodes::kernelCodes(105).front(), KEY_F13) << "not Print Screen";
  for (const int silent : {KEY_RESERVED, KEY_MUTE, KEY_POWER, BTN_LEFT, KEY_MAX, 70000})
    EXPECT_EQ(KeyCodes::virtualCode(static_cast<uint32_t>(silent)), std::nullopt) << silent;
}

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
