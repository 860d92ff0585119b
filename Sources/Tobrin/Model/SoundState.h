/// Whether a key that is pressed now can be heard, and if not, the first thing that is in the way.
/// What the panel, the tray and the terminal show follows from it. Thread: any.
#pragma once

#include "Input/KeyPause.h"

namespace tobrin {

/// In order of severity: of several, the first is what the user must mend first.
enum class SoundState {
  noKeyAccess,  ///< keys cannot be heard, or access was given and still none come
  noSound,      ///< nothing plays: no sound server, no device
  packBroken,   ///< the selected pack did not load, or there is none
  off,          ///< switched off by the user
  pausedInBackground,
  pausedWhileLocked,
  recording,      ///< the user's own keyboard is being recorded
  pausedForCall,  ///< an application uses a microphone
  quietForApp,    ///< the application in front is one to be quiet in
  muted,          ///< the volume is 0
  playing,
};

struct SoundConditions {
  bool hasKeyAccess = true;
  bool hasSound = true;
  bool hasPack = true;
  bool isOn = true;
  bool isRecording = false;
  KeyPause pause = KeyPause::none;
  bool isInCall = false;  ///< and sounds pause for it
  bool isQuietForApp = false;
  float volume = 1;  ///< linear
};

[[nodiscard]] constexpr SoundState soundState(const SoundConditions& conditions) {
  if (!conditions.hasKeyAccess) return SoundState::noKeyAccess;
  if (!conditions.hasSound) return SoundState::noSound;
  if (!conditions.hasPack) return SoundState::packBroken;
  if (!conditions.isOn) return SoundState::off;
  if (conditions.pause == KeyPause::inBackground) return SoundState::pausedInBackground;
  if (conditions.pause == KeyPause::locked) return SoundState::pausedWhileLocked;
  if (conditions.isRecording) return SoundState::recording;
  if (conditions.isInCall) return SoundState::pausedForCall;
  if (conditions.isQuietForApp) return SoundState::quietForApp;
  return conditions.volume > 0 ? SoundState::playing : SoundState::muted;
}

}  // namespace tobrin
