/// Tells the releases among the hits of a recording from the presses. Thread: any.
#pragma once

#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {

/// Sets `isRelease` on the releases and strays among the hits, which are in time order. `rate` in
/// samples a second.
///
/// A release is softer than the presses around it and follows its own press after the time a finger
/// rests on a key; every press is released once. A `TypingModel` of both is fitted to the recording
/// in turns with the most likely reading of all hits (expectation maximisation with hard
/// assignments), from several first guesses. Marked is only what is no press with near certainty:
/// where releases sound like presses, few are marked.
void markReleases(std::vector<RecordedHit>& hits, double rate);

}  // namespace tobrin
