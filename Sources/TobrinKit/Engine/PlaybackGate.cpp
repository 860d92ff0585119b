#include "Engine/PlaybackGate.h"

namespace tobrin {

PlaybackGate::State PlaybackGate::state() const {
  if (!enabled) return State::off;
  return quietDuringCalls && micInUse ? State::pausedForCall : State::playing;
}

bool PlaybackGate::toggle() {
  enabled = !enabled;
  return true;
}

}  // namespace tobrin
