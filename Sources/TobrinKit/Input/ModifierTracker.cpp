#include "Input/ModifierTracker.h"

namespace tobrin {

uint32_t ModifierTracker::mask(uint16_t code) {
  switch (code) {
    case 56:
      return 0x2;  // left Shift
    case 60:
      return 0x4;  // right Shift
    case 59:
      return 0x1;  // left Control
    case 62:
      return 0x2000;  // right Control
    case 58:
      return 0x20;  // left Option
    case 61:
      return 0x40;  // right Option
    case 55:
      return 0x8;  // left Command
    case 54:
      return 0x10;  // right Command
    case 63:
      return 0x800000;  // Fn
    default:
      return 0;
  }
}

std::optional<KeyAction> ModifierTracker::update(uint16_t code, uint32_t flags) {
  if (code == capsLock) return KeyAction::down;
  const uint32_t keyMask = mask(code);
  if (keyMask == 0) return std::nullopt;

  const bool pressed = (flags & keyMask) != 0;
  const bool held = (down_ & keyMask) != 0;
  if (pressed == held) return std::nullopt;
  down_ ^= keyMask;
  return pressed ? KeyAction::down : KeyAction::up;
}

}  // namespace tobrin
