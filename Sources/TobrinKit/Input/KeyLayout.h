/// What is known of a key by its code: group, place on the keyboard, identity. Thread: any.
#pragma once

#include <cstdint>
#include <optional>

#include "Base/KeyEvent.h"

namespace tobrin {

/// The group whose takes the key or mouse button plays; Tab counts as a modifier, unknown codes as
/// `alpha`.
[[nodiscard]] KeyGroup keyGroupOf(uint16_t code);

/// The key's place in key widths from the left edge of a laptop's keyboard, 0 to 15; nothing for
/// unknown keys.
[[nodiscard]] std::optional<double> keyColumn(uint16_t code);

/// -1 (left) to +1 (right); 0 for keys without a column.
[[nodiscard]] float keyPan(uint16_t code);

/// A fixed 64-bit hash of the key, the same on every run: its take and pitch follow from it.
[[nodiscard]] uint64_t keyIdentity(uint16_t code);

}  // namespace tobrin
