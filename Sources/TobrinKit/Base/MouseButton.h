/// Codes for the buttons and the wheel of a mouse, above the codes of all keys. Thread: any.
#pragma once

#include <cstdint>

namespace tobrin {

enum class MouseButton : uint16_t { left = 0x1000, right, middle, back, forward, other, wheel };

constexpr uint16_t codeOf(MouseButton button) {
  return static_cast<uint16_t>(button);
}

constexpr bool isMouse(uint16_t code) {
  return code >= codeOf(MouseButton::left) && code <= codeOf(MouseButton::wheel);
}

}  // namespace tobrin
