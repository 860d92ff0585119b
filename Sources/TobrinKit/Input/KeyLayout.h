/// Pure functions over virtual key codes: group, place on the keyboard, identity. Thread: any.
#pragma once

#include <cstdint>
#include <optional>

#include "Base/KeyEvent.h"

namespace tobrin {

struct KeyLayout {
  /// The group whose takes the key plays; Tab counts as a modifier, unknown codes as `alpha`.
  static KeyGroup group(uint16_t code);

  /// The key's place in key widths from the left edge of a laptop's keyboard, 0 to 15; nothing for
  /// unknown keys.
  static std::optional<double> column(uint16_t code);

  /// -1 (left) to +1 (right); 0 for keys without a column.
  static float pan(uint16_t code);

  /// A fixed 64-bit hash of the key, the same on every run: its take and pitch hang on it.
  static uint64_t identity(uint16_t code);
};

}  // namespace tobrin
