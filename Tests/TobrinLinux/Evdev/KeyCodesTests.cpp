#include "Evdev/KeyCodes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include "Input/Hotkey.h"
#include "Input/KeyLayout.h"

namespace tobrin {
namespace {

TEST(KeyCodes, EveryKeyWithAPlaceIsReachedFromTheKernelInReadingOrder) {
  // The kernel numbers each row of the main block from left to right, and so do the columns.
  const struct {
    uint16_t first, last;
  } rows[] = {{KEY_1, KEY_BACKSPACE},  {KEY_TAB, KEY_RIGHTBRACE}, {KEY_A, KEY_APOSTROPHE},
              {KEY_Z, KEY_RIGHTSHIFT}, {KEY_F1, KEY_F10},         {KEY_F11, KEY_F12}};
  for (const auto& row : rows) {
    double left = 0;
    for (uint16_t key = row.first; key <= row.last; ++key) {
      const auto code = KeyCodes::virtualCode(key);
      ASSERT_TRUE(code) << key;
      const auto column = KeyLayout::column(*code);
      ASSERT_TRUE(column) << key;
      EXPECT_GT(*column, left) << key;
      left = *column;
    }
  }
  int withoutKey = 0;
  for (uint16_t code = 0; code < 128; ++code) {
    if (KeyLayout::column(code) && KeyCodes::kernelCodes(code).empty()) ++withoutKey;
  }
  EXPECT_EQ(withoutKey, 0);
}

TEST(KeyCodes, GroupsAndNeighboursOfTheOtherKeys) {
  const struct {
    uint16_t key, code;
  } rows[] = {{KEY_KP0, 82},   {KEY_KP7, 89},       {KEY_KP8, 91},   {KEY_KPENTER, 76},
              {KEY_KPDOT, 65}, {KEY_NUMLOCK, 71},   {KEY_UP, 126},   {KEY_LEFT, 123},
              {KEY_102ND, 10}, {KEY_RO, 94},        {KEY_YEN, 93},   {KEY_MUHENKAN, 102},
              {KEY_F20, 90},   {KEY_RIGHTMETA, 54}, {KEY_HOME, 115}, {KEY_DELETE, 117}};
  for (const auto& row : rows)
    EXPECT_EQ(KeyCodes::virtualCode(row.key), row.code) << row.key;
  for (const int silent : {KEY_RESERVED, KEY_MUTE, KEY_VOLUMEUP, KEY_POWER, KEY_PLAYPAUSE,
                           KEY_BRIGHTNESSUP, BTN_LEFT, BTN_TOUCH, KEY_MAX, 70000}) {
    EXPECT_EQ(KeyCodes::virtualCode(static_cast<uint32_t>(silent)), std::nullopt) << silent;
  }
  EXPECT_EQ(KeyCodes::kernelCodes(105).front(), KEY_F13);  // not Print Screen
  for (const Hotkey& preset : Hotkey::presets()) {
    EXPECT_EQ(KeyCodes::kernelCodes(preset.keyCode).size(), 1U);
  }
}

}  // namespace
}  // namespace tobrin
