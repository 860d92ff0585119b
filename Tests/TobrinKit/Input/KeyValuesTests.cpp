#include <gtest/gtest.h>

#include <set>

#include "Input/Hotkey.h"
#include "Input/KeyLayout.h"

namespace tobrin {
namespace {

TEST(KeyLayout, GroupsColumnsAndPans) {
  const struct {
    const char* label;
    uint16_t code;
    KeyGroup group;
    double column;
  } rows[] = {
      {"Space", 49, KeyGroup::space, 7.5},
      {"Return", 36, KeyGroup::enter, 14},
      {"keypad Enter", 76, KeyGroup::enter, -1},
      {"Delete", 51, KeyGroup::backspace, 14},
      {"forward Delete", 117, KeyGroup::backspace, 14.6},
      {"Tab", 48, KeyGroup::modifier, 0.75},
      {"right Command", 54, KeyGroup::modifier, 11.25},
      {"Fn", 63, KeyGroup::modifier, 0.5},
      {"F17", 64, KeyGroup::alpha, -1},
      {"Escape", 53, KeyGroup::alpha, 0.5},
      {"F12", 111, KeyGroup::alpha, 1.6 + 11 * 1.08},
      {"grave accent", 50, KeyGroup::alpha, 0.5},
      {"=", 24, KeyGroup::alpha, 12.5},
      {"]", 30, KeyGroup::alpha, 13},
      {"'", 39, KeyGroup::alpha, 12.25},
      {"/", 44, KeyGroup::alpha, 11.75},
      {"none", 65535, KeyGroup::alpha, -1},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(KeyLayout::group(row.code), row.group) << row.label;
    EXPECT_DOUBLE_EQ(KeyLayout::column(row.code).value_or(-1), row.column) << row.label;
  }
  EXPECT_EQ(KeyLayout::pan(49), 0);
  EXPECT_NEAR(KeyLayout::pan(53), -0.9333, 1e-4);
  EXPECT_NEAR(KeyLayout::pan(124), 0.9867, 1e-4);
  std::set<uint64_t> identities;
  for (uint16_t code = 0; code < 128; ++code)
    identities.insert(KeyLayout::identity(code));
  EXPECT_EQ(identities.size(), 128u);
}

TEST(Hotkey, ShowsModifiersInOrderThenTheKey) {
  const auto naming = [](const char* text) {
    return [text](uint32_t) { return std::optional<std::string>(text); };
  };
  const struct {
    Hotkey hotkey;
    Hotkey::KeyName keyName;
    const char* shown;
  } rows[] = {
      {Hotkey::presets()[0], nullptr, "⌃⌥⌘K"},
      {{49, {0xF}}, naming(" "), "⌃⌥⇧⌘Space"},
      {{33, {Modifiers::shift}}, naming("é"), "⇧É"},
      {{33, {}}, naming(""), "["},
      {{90, {}}, nullptr, "F20"},
      {{200, {0x10}}, [](uint32_t) { return std::nullopt; }, "Key 200"},
      {{4294967295, {}}, naming("ß"), "SS"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(row.hotkey.displayString(row.keyName), row.shown);
}

}  // namespace
}  // namespace tobrin
