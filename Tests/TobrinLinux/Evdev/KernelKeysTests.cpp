#include <gtest/gtest.h>
#include <libevdev/libevdev.h>

#include <map>
#include <string>

#include "Evdev/HeldKeys.h"
#include "Evdev/KeyCodes.h"
#include "Support/KeptText.h"

namespace tobrin {
namespace {

/// By the kernel's own names; of several keys with one code the usual one first.
TEST(KeyCodes, EveryKeyOfTheKernelIsTheOneOfItsName) {
  std::string text;
  for (uint32_t code = 0; code < 300; ++code) {
    const auto keys = kernelCodesOf(code);
    if (!keys.empty()) text += std::to_string(code);
    for (const uint16_t key : keys)
      text += std::string(" ") + libevdev_event_code_get_name(EV_KEY, key);
    if (!keys.empty()) text += '\n';
  }
  for (uint32_t key = 0; key <= KEY_MAX + 1; ++key)
    if (const auto code = virtualCodeOf(key))
      text += std::string(libevdev_event_code_get_name(EV_KEY, key)) + " " + std::to_string(*code) +
              "\n";
  for (uint32_t key = 0; key <= KEY_MAX; ++key)
    if (const auto code = mouseCodeOf(key))
      text += std::string(libevdev_event_code_get_name(EV_KEY, key)) + " " + std::to_string(*code) +
              "\n";
  testing::expectKeptText(text, "TobrinLinux/Evdev/key-codes.txt");
}

using Change = HeldKeys::Change;
using Type = KeySource::EventType;

TEST(HeldKeys, KnowsModifiersByTheirFlagsAndReleasesWhatAVanishedKeyboardHeld) {
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
