/// Tells the releases among the hits of a recording from the presses. Thread: any.
#pragma once

#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {

/// Sets `isRelease` on the releases and strays among the hits, which are in time order. `rate` in
/// samples a second.
///
/// A release is softer than the presses around it and follows its own press after the time a finger
/// rests on a key; every press is released once. Two steps take turns, from several first guesses
/// (expectation maximisation with hard assignments): find the most likely reading of all hits, then
/// fit a `TypingModel` to it. Only hits that are almost certainly no press are marked: where
/// releases sound like presses, few are.
void markReleases(std::vector<RecordedHit>& hits, double rate);

}  // namespace tobrin
