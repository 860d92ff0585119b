#include "Input/ModifierTracker.h"

#include "Base/Key.h"

namespace tobrin {

uint32_t ModifierTracker::mask(uint16_t code) {
  switch (Key{code}) {
    case Key::leftShift:
      return 0x2;
    case Key::rightShift:
      return 0x4;
    case Key::leftControl:
      return 0x1;
    case Key::rightControl:
      return 0x2000;
    case Key::leftOption:
      return 0x20;
    case Key::rightOption:
      return 0x40;
    case Key::leftCommand:
      return 0x8;
    case Key::rightCommand:
      return 0x10;
    case Key::function:
      return 0x800000;
    default:
      return 0;
  }
}

std::optional<KeyAction> ModifierTracker::update(uint16_t code, uint32_t flags) {
  if (Key{code} == Key::capsLock) return KeyAction::down;
  const uint32_t keyMask = mask(code);
  if (keyMask == 0) return std::nullopt;

  const bool pressed = (flags & keyMask) != 0;
  const bool held = (down_ & keyMask) != 0;
  if (pressed == held) return std::nullopt;
  down_ ^= keyMask;
  return pressed ? KeyAction::down : KeyAction::up;
}

}  // namespace tobrin
