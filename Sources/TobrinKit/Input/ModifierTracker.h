/// Turns changes of the modifier flags into presses and releases of single modifier keys. Each side
/// has its own flag, so that both Shift keys go down and up independently. Thread: key.
#pragma once

#include <cstdint>
#include <optional>

#include "Base/Key.h"
#include "Base/KeyEvent.h"

namespace tobrin {

class ModifierTracker {
 public:
  /// The flag of the modifier key with this virtual key code; 0 for every other key, Caps Lock
  /// among them.
  static uint32_t mask(uint16_t code);

  /// Whether the key shows by changes of the flags instead of presses and releases.
  static bool isModifier(uint16_t code) { return Key{code} == Key::capsLock || mask(code) != 0; }

  /// What key `code` did, now that the flags are `flags`; nothing where its state is unchanged or
  /// the key is no modifier. Caps Lock only toggles a flag: each change is a `down`, never an `up`.
  std::optional<KeyAction> update(uint16_t code, uint32_t flags);

 private:
  uint32_t down_ = 0;  // masks of the keys held
};

}  // namespace tobrin
