#include "Input/ModifierTracker.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

TEST(ModifierTracker, EachSideGoesDownAndUpByItself) {
  ModifierTracker tracker;
  const struct {
    const char* label;
    uint16_t code;
    uint32_t flags;
    std::optional<KeyAction> action;
  } steps[] = {
      {"left Shift down", 56, 0x20002, KeyAction::down},
      {"no change", 56, 0x20002, std::nullopt},
      {"right Shift down", 60, 0x20006, KeyAction::down},
      {"left Shift up", 56, 0x20004, KeyAction::up},
      {"Caps Lock on", 57, 0x10004, KeyAction::down},
      {"Caps Lock off", 57, 0x4, KeyAction::down},
      {"a key that is no modifier", 114, 0x4, std::nullopt},
      {"right Shift up", 60, 0, KeyAction::up},
      {"released without a press", 59, 0, std::nullopt},
  };
  for (const auto& step : steps) {
    EXPECT_EQ(tracker.update(step.code, step.flags), step.action) << step.label;
  }
}

}  // namespace
}  // namespace tobrin
