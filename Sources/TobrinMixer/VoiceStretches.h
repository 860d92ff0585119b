#pragma once

#include <cstdint>

#include "MixKernels.h"
#include "MixerVoice.h"

namespace tobrin {

/// The lines that `frames` frames of `voice` from now on are mixed from, for 1 or 2 output
/// channels. The frames lie within the voice's sound and within its ramp, if one runs. Layers that
/// stay silent are left out.
VoiceStretch stretchOf(const MixerVoice& voice, uint32_t frames, uint32_t channels) noexcept;

}  // namespace tobrin
