/// Global shortcuts of a desktop that answers as a test says.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "Input/ShortcutService.h"

namespace tobrin::testing {

struct ShortcutDesk {
  ShortcutGrab answer;
  bool reserved = false;
  std::function<void()> pressed;  ///< empty while nothing is grabbed
};

class DeskShortcuts final : public ShortcutService {
 public:
  explicit DeskShortcuts(ShortcutDesk& desk) : desk_(desk) {}
  bool isReserved(const Hotkey&) override { return desk_.reserved; }
  ShortcutGrab grab(const Hotkey&, std::function<void()> pressed) override {
    EXPECT_FALSE(desk_.reserved);
    desk_.pressed = desk_.answer == ShortcutGrab{} ? std::move(pressed) : nullptr;
    return desk_.answer;
  }
  void release() override { desk_.pressed = nullptr; }
  std::optional<std::string> keyName(uint32_t) override { return "k"; }
  void observe(const KeyEvent&) override {}
  [[nodiscard]] std::string description() const override { return "a desk"; }

 private:
  ShortcutDesk& desk_;
};

}  // namespace tobrin::testing
