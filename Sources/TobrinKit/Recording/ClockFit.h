/// How the times of keys and the samples of a recording go together: a delay (the microphone's path
/// less the keyboard's own) and a slow drift, found in the recording itself. Thread: any.
#pragma once

namespace tobrin {

struct ClockFit {
  double delay = 0;       ///< s from a press's event to its sound, at the recording's start
  double drift = 0;       ///< s a second by which the delay grows
  double releaseLag = 0;  ///< s that releases sound later after their event than presses do
  bool isKnown = false;   ///< false where too few sounds go with keys; the rest is 0 then

  bool operator==(const ClockFit&) const = default;
};

}  // namespace tobrin
