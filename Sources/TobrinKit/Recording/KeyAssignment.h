/// Decides which rise of the level is the sound of which key. Thread: any.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "Recording/ClockFit.h"
#include "Recording/KeyedRecording.h"
#include "Recording/SoundRises.h"

namespace tobrin {

struct AssignedRise {
  std::optional<std::size_t> rise;  ///< of the key's sound; nothing where none is heard
  bool isDoubtful = false;          ///< the rise, or that of a neighbour, may be another key's
};

/// One a key, in the same order. No rise is given to two keys. `rate` of the rises' samples in Hz.
[[nodiscard]] std::vector<AssignedRise> assignRises(std::span<const SoundRise> rises,
                                                    std::span<const RecordedKey> keys,
                                                    const ClockFit& fit, double rate);

}  // namespace tobrin
