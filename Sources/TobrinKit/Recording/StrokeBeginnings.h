/// Moves the sound of a press to where it begins: many keys click or give way some milliseconds
/// before they strike bottom, and the strike is the louder of the two. Thread: any.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "Recording/KeyAssignment.h"

namespace tobrin {

/// The first sample of each key's sound; nothing where it is unheard or doubtful. Where most
/// presses of a keyboard begin equally long before their strike, that lead holds for all, so that
/// its takes respond alike, even where another sound hides the beginning.
[[nodiscard]] std::vector<std::optional<std::size_t>> strokeBeginnings(
    std::span<const SoundRise> rises, std::span<const RecordedKey> keys,
    std::span<const AssignedRise> assigned, double rate);

}  // namespace tobrin
