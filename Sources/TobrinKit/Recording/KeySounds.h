/// Measures the sound of each key in a recording and judges whether it may be cut. Thread: any.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "Building/RecordingSlicer.h"
#include "Recording/ClockFit.h"
#include "Recording/KeyedRecording.h"
#include "Recording/SoundRises.h"

namespace tobrin {

/// What becomes of the sound of a key: only good ones may be cut.
enum class KeyFate : uint8_t {
  good,
  unheard,      ///< nothing sounds where the key's sound must be
  overlapping,  ///< begun while another key sounded, or at one moment with it
  crowded,      ///< another key's sound begins too soon after
  disturbed,    ///< something that is no key sounds with it: speech, a knock
  clipped
};

inline constexpr std::size_t keyFateCount = 6;

/// The name in output for people and scripts, such as "good".
[[nodiscard]] std::string_view nameOf(KeyFate fate);

/// The sound of one key event.
struct KeyEventSound {
  KeyFate fate = KeyFate::unheard;
  RecordedHit hit;  ///< all zero where nothing was heard, or it is not sure whose it is
};

/// One a key, in the same order. `rises` are those of `mono`; `rate` in Hz. Releases need less room
/// than presses, for which `options` says how much.
[[nodiscard]] std::vector<KeyEventSound> findKeySounds(std::span<const float> mono, double rate,
                                                       const SoundRises& rises,
                                                       std::span<const RecordedKey> keys,
                                                       const ClockFit& fit,
                                                       const SlicerOptions& options);

}  // namespace tobrin
