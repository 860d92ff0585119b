#include "Evdev/KeyCodes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

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
    EXPECT_FALSE(KeyLayout::column(code) && KeyCodes::kernelCodes(code).empty()) << code;
  EXPECT_EQ(KeyCodes::kernelCodes(105).front(), KEY_F13) << "not Print Screen";
  for (const int silent : {KEY_RESERVED, KEY_MUTE, KEY_POWER, BTN_LEFT, KEY_MAX, 70000})
    EXPECT_EQ(KeyCodes::virtualCode(static_cast<uint32_t>(silent)), std::nullopt) << silent;
}

}  // namespace
}  // namespace tobrin
