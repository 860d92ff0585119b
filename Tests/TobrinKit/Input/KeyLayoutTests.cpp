#include "Input/KeyLayout.h"

#include <gtest/gtest.h>

#include <map>

#include "Input/ModifierTracker.h"

namespace tobrin {
namespace {

TEST(KeyLayout, GivesEveryKeyItsGroupAndPlace) {
  constexpr double none = -1;
  // clang-format off
  constexpr std::array<double, 128> columns = {
      2.25, 3.25, 4.25, 5.25, 7.25, 6.25, 2.75, 3.75, 4.75, 5.75, 1.75, 6.75, 2, 3, 4, 5,
      7, 6, 1.5, 2.5, 3.5, 4.5, 6.5, 5.5, 12.5, 9.5, 7.5, 11.5, 8.5, 10.5, 13, 10,
      8, 12, 9, 11, 14, 10.25, 8.25, 12.25, 9.25, 11.25, 14.25, 9.75, 11.75, 7.75, 8.75, 10.75,
      0.75, 7.5, 0.5, 14, none, 0.5, 11.25, 3.75, 1.2, 0.9, 2.5, 1.5, 13.9, 12.4, 14.4, 0.5,
      14.9, 14.95, none, 14.95, none, 15, none, 14.85, none, none, none, 14.9, 15, none, 15, 14.95,
      15, 14.9, 14.85, 14.85, 14.9, 14.95, 14.85, 14.9, 14.95, 14.85, 15, 14.9, 14.95, 13.25, 12.75, 15,
      5.92, 7, 8.08, 3.76, 9.16, 10.24, 5, 12.4, 10, 14.6, 14.85, 14.7, none, 11.32, 13.4, 13.48,
      none, 14.8, 14.6, 14.7, 14.8, 14.6, 4.84, 14.7, 2.68, 14.8, 1.6, 13.1, 14.9, 14, 14, none,
  };
  // clang-format on
  std::map<uint16_t, KeyGroup> groups = {{36, KeyGroup::enter},      {76, KeyGroup::enter},
                                         {49, KeyGroup::space},      {51, KeyGroup::backspace},
                                         {117, KeyGroup::backspace}, {48, KeyGroup::modifier}};
  for (uint16_t code = 54; code <= 63; ++code)
    groups[code] = KeyGroup::modifier;
  for (uint16_t code = 0; code < 300; ++code) {
    const double column = code < columns.size() ? columns[code] : none;
    EXPECT_NEAR(keyColumn(code).value_or(none), column, 1e-9) << code;
    EXPECT_NEAR(keyPan(code), column == none ? 0 : column / 7.5 - 1, 1e-6) << code;
    const auto group = groups.find(code);
    EXPECT_EQ(keyGroupOf(code), group == groups.end() ? KeyGroup::alpha : group->second) << code;
  }
}

TEST(ModifierTracker, EverySideHasItsFlag) {
  const std::map<uint16_t, uint32_t> flags = {{54, 0x10}, {55, 0x8},    {56, 0x2},
                                              {58, 0x20}, {59, 0x1},    {60, 0x4},
                                              {61, 0x40}, {62, 0x2000}, {63, 0x800000}};
  for (uint16_t code = 0; code < 300; ++code) {
    const auto flag = flags.find(code);
    EXPECT_EQ(ModifierTracker::mask(code), flag == flags.end() ? 0 : flag->second) << code;
    EXPECT_EQ(ModifierTracker::isModifier(code), code == 57 || flag != flags.end()) << code;
  }
}

}  // namespace
}  // namespace tobrin
