/// A recording of typing together with the keys that were typed: which sound is whose need not be
/// guessed from the sound. Keys carry a number, never their code. Thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Base/KeyEvent.h"

namespace tobrin {

/// One press or release while a recording ran.
struct RecordedKey {
  int64_t time = 0;  ///< ns after the recording's first frame, by `MachTime`'s clock
  KeyAction action = KeyAction::down;
  KeyGroup group = KeyGroup::alpha;
  uint32_t number = 0;         ///< which key: from 0, in order of first use
  std::optional<float> force;  ///< tier position of a press, 0 to 3, where it was measured

  bool operator==(const RecordedKey&) const = default;
};

struct KeyedRecording {
  std::vector<float> samples;     ///< mono, full scale at 1
  double rate = 48000;            ///< Hz
  std::vector<RecordedKey> keys;  ///< in order of time, without autorepeats
};

}  // namespace tobrin
