/// Tells the wide keys (space, return, backspace) among the presses of a recording by their sound.
/// Thread: any.
#pragma once

#include <span>
#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {

/// Sets `isBig` on the presses among `hits`. `mono` is the recording's mix at `rate` samples a
/// second; `share` of all presses (0 to 1) is marked.
///
/// Wide keys sound lower and longer. Each press is ranked among all presses by its mean frequency,
/// by how much of it lies below 200 and below 400 Hz, and by its decay: no single one of these
/// works for every keyboard, and ranks need no common scale. The share of presses ranked lowest
/// counts as wide. Where wide keys sound like the others, that picks ordinary keys that are rather
/// low and long, which still suit a wide key.
void markWideKeys(std::vector<RecordedHit>& hits, std::span<const float> mono, double rate,
                  double share);

}  // namespace tobrin
