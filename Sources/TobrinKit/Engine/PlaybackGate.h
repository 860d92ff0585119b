/// Decides from the user's switch and the microphone watch whether sounds play at all, and which
/// reason to show where they do not. A plain value. Thread: any.
#pragma once

#include <cstdint>

namespace tobrin {

struct PlaybackGate {
  enum class State : uint8_t { playing, off, pausedForCall };

  bool enabled = true;           ///< the user's sound switch
  bool quietDuringCalls = true;  ///< pause while a microphone is in use
  bool micInUse = false;         ///< some application uses a microphone

  bool operator==(const PlaybackGate&) const = default;

  /// The user's own switch comes before a call.
  [[nodiscard]] State state() const;
  [[nodiscard]] bool isPlaying() const { return state() == State::playing; }

  /// Flips `enabled`; true, because the switch has always changed then.
  bool toggle();
};

}  // namespace tobrin
