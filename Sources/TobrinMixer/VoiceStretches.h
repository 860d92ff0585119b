#pragma once

#include <cstdint>

#include "MixKernels.h"
#include "MixerVoice.h"

namespace tobrin {

/// A part of a stretch: `frames` frames from `offset` on.
struct MixSpan {
  uint32_t offset;
  uint32_t frames;
};

/// Describes what `voice` adds to `span` of the mix from its present position on, for 1 or 2 output
/// channels. The frames lie within the voice's sound and within its ramp, if one runs. Layers that
/// stay silent are left out.
void describeStretch(const MixerVoice& voice, MixSpan span, uint32_t channels,
                     VoiceStretch& stretch) noexcept;

}  // namespace tobrin
