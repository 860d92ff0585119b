/// Cuts a recording of typing into takes by the keys that were typed: each sound belongs to the key
/// that made it. Thread: any.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Building/RecordingSlicer.h"
#include "Recording/ClockFit.h"
#include "Recording/KeyedRecording.h"

namespace tobrin {

/// What becomes of the sound of a key: only good ones may be cut.
enum class KeyFate : uint8_t {
  good,
  unheard,      ///< nothing sounds where the key's sound must be
  overlapping,  ///< begun while another key sounded
  crowded,      ///< another key's sound begins too soon after
  disturbed,    ///< something that is no key sounds with it: speech, a knock
  clipped
};

/// The name in output for people and scripts, such as "good".
[[nodiscard]] std::string_view nameOf(KeyFate fate);

/// The sound of one key event; `hit` is empty where nothing was heard.
struct KeySound {
  KeyFate fate = KeyFate::unheard;
  RecordedHit hit;
};

struct KeyedTakes {
  std::map<KeyGroup, RecordedTiers> down;  ///< a group without good presses is absent
  std::map<KeyGroup, std::vector<RecordedTake>> up;
  std::vector<KeySound> sounds;  ///< one a key of the recording, in the same order
  ClockFit fit;
  double rate = 48000;   ///< Hz, of the takes
  float noiseFloor = 0;  ///< amplitude above 700 Hz
  std::string report;    ///< one line for people
};

/// Finds the sound of every key and cuts the good ones. `alphaVariants` of the options holds for
/// letters and modifiers, `bigVariants` for the other groups, each tier; `releaseVariants` for each
/// group. Detection options of the slicer have no meaning here.
[[nodiscard]] KeyedTakes findKeyedTakes(const KeyedRecording& recording,
                                        const SlicerOptions& options = {});

}  // namespace tobrin
