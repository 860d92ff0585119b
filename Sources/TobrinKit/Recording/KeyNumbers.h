/// Gives the keys of one recording numbers in place of their codes, so that nothing that is kept
/// says what was typed. Thread: any, one at a time.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "Base/KeyEvent.h"
#include "Recording/KeyedRecording.h"

namespace tobrin {

class KeyNumbers final {
 public:
  /// `firstFrame` is when the recording began, in ticks of `MachTime`.
  explicit KeyNumbers(uint64_t firstFrame) : firstFrame_(firstFrame) {}

  /// The event as it is kept; nothing for an autorepeat, or for the release of a key that was down
  /// before the recording began. `force` is the measured tier position of a press.
  [[nodiscard]] std::optional<RecordedKey> recorded(const KeyEvent& event,
                                                    std::optional<float> force = {});

 private:
  struct Known {
    uint32_t number = 0;
    bool isDown = false;
  };

  uint64_t firstFrame_;
  std::map<uint16_t, Known> keys_;  // by code
};

}  // namespace tobrin
