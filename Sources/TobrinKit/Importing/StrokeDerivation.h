/// Makes the strengths of a key stroke from one recording of it. Thread: any.
///
/// What is followed: a harder stroke is louder, brighter and quicker to rise, all three together.
/// Two bodies that meet touch for a time that goes with speed^(-1/5) (H. Hertz, 1882, on the
/// contact of elastic solids; N. H. Fletcher and T. D. Rossing, "The Physics of Musical
/// Instruments", on hammers). Below the corner that this time sets, the spectrum grows with speed;
/// above it, where the force of such a blow falls by 12 dB an octave, with speed^(1 + 2/5): 0.4 dB
/// for each dB of speed, 0.33 for each dB of level where level goes with speed^1.2. Our own model
/// of keys (`KeySynth`) has strength^1.25 for the level and up to strength^0.9 more for the highest
/// modes, 0.36 dB a dB in the mean. Measured as the sound above 2 kHz against that below, the takes
/// of its five keyboards spread from -1.6 to 1.35 dB a dB, with a median of 0.15; what is derived
/// lies between 0.1 and 0.3.
#pragma once

#include "Base/KeyEvent.h"
#include "Building/RecordingSlicer.h"

namespace tobrin {

/// Level of a tier against that of the medium one, in dB.
[[nodiscard]] double tierLevelDb(Tier tier);

/// A take of `tier` made from a medium one; `medium` itself comes back as it is.
[[nodiscard]] RecordedTake derivedStroke(const RecordedTake& medium, Tier tier);

}  // namespace tobrin
