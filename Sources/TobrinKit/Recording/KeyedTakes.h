/// Cuts a recording of typing into takes by the keys that were typed: each sound belongs to the key
/// that made it. Thread: any.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Building/RecordingSlicer.h"
#include "Recording/ClockFit.h"
#include "Recording/KeySounds.h"
#include "Recording/KeyedRecording.h"

namespace tobrin {

struct KeyedTakes {
  std::map<KeyGroup, RecordedTiers> down;  ///< a group without good presses is absent
  std::map<KeyGroup, std::vector<RecordedTake>> up;
  std::vector<KeyEventSound> sounds;  ///< one a key of the recording, in the same order
  ClockFit fit;
  double rate = 48000;        ///< Hz, of the takes
  float noiseFloor = 0;       ///< amplitude above 700 Hz
  double noiseLoweredDb = 0;  ///< in the takes; 0 where the recording was left as it is
  std::string report;         ///< one line for people
};

/// Finds the sound of every key and cuts the good ones: up to `variantsOf` presses a tier and
/// `releaseVariants` releases a group. Options that guide the search for hits in recordings without
/// keys have no effect.
[[nodiscard]] KeyedTakes findKeyedTakes(const KeyedRecording& recording,
                                        const SlicerOptions& options = {});

}  // namespace tobrin
