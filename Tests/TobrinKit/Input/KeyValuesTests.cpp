#include <gtest/gtest.h>

#include "Input/Hotkey.h"

namespace tobrin {
namespace {

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
