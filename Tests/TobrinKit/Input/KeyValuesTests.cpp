#include <gtest/gtest.h>

#include <tuple>

#include "Input/Hotkey.h"
#include "Input/KeyLayout.h"

namespace tobrin {
namespace {

TEST(KeyLayout, GroupsAndColumns) {
  const std::tuple<uint16_t, KeyGroup, double> rows[] = {
      {76, KeyGroup::enter, -1},      {117, KeyGroup::backspace, 14.6},
      {48, KeyGroup::modifier, 0.75}, {63, KeyGroup::modifier, 0.5},
      {64, KeyGroup::alpha, -1},      {111, KeyGroup::alpha, 1.6 + 11 * 1.08},
      {65535, KeyGroup::alpha, -1},
  };
  for (const auto& [code, group, column] : rows) {
    EXPECT_EQ(KeyLayout::group(code), group) << code;
    EXPECT_DOUBLE_EQ(KeyLayout::column(code).value_or(-1), column) << code;
  }
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
      {{200, {0x10}}, [](uint32_t) { return std::nullopt; }, "Key 200"},
      {{4294967295, {}}, naming("ß"), "SS"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(row.hotkey.displayString(row.keyName), row.shown);
}

}  // namespace
}  // namespace tobrin
