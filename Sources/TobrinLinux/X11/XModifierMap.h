/// Which bits of an X server's key state mean which modifier keys. The server's settings decide;
/// only Shift, Control and Caps Lock have fixed bits. Thread: key.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

#include "Input/Hotkey.h"

namespace tobrin {

class XModifierMap {
 public:
  explicit XModifierMap(xcb_connection_t* connection);

  /// The bits of a shortcut's modifiers.
  [[nodiscard]] uint16_t mask(Modifiers modifiers) const;

  /// Every combination of the bits of Caps Lock, Num Lock and Scroll Lock, also without any: a
  /// shortcut works with any of them on.
  [[nodiscard]] std::vector<uint16_t> lockCombinations() const;

 private:
  uint16_t option_ = XCB_MOD_MASK_1;
  uint16_t command_ = XCB_MOD_MASK_4;
  uint16_t numLock_ = 0;
  uint16_t scrollLock_ = 0;
};

}  // namespace tobrin
