#include "Input/KeyLayout.h"

#include <gtest/gtest.h>

#include "Input/Hotkey.h"
#include "Input/ModifierTracker.h"
#include "Support/KeptText.h"

namespace tobrin {
namespace {

TEST(KeyLayout, EveryKeyHasItsLabelGroupPlaceAndFlag) {
  std::string text;
  for (uint16_t code = 0; code < 300; ++code) {
    const auto column = keyColumn(code);
    EXPECT_NEAR(keyPan(code), column ? *column / 7.5 - 1 : 0, 1e-6) << code;
    const std::string key = testing::line(
        "%d %s %s %g %#x%s\n", code, Hotkey{code, {}}.displayString(nullptr).c_str(),
        std::string(rawValue(keyGroupOf(code))).c_str(), column.value_or(-1),
        ModifierTracker::mask(code), ModifierTracker::isModifier(code) ? " modifier" : "");
    const bool isUnknown = key == testing::line("%d Key %d alpha -1 0\n", code, code);
    if (!isUnknown) text += key;
  }
  for (const Hotkey& preset : Hotkey::presets())
    text += preset.displayString(nullptr) + "\n";
  testing::expectKeptText(text, "TobrinKit/Input/keys.txt");
}

}  // namespace
}  // namespace tobrin
