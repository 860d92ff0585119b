#pragma once

#include <cstdint>

#include "MixerVoice.h"

namespace tobrin {

/// Where a block goes: `right` is null for mono, which takes half the sum of both channels.
struct MixOutput {
  float* left = nullptr;
  float* right = nullptr;
};

/// Gain across a block: `start + step * (i + 1)` in its i-th frame.
struct MasterRamp {
  float start = 1;
  float step = 0;
};

/// Adds `frames` frames of `voice`, which has that many left and is wholly within a ramp or wholly
/// outside one, to the output; the voice itself is left as it was.
void mixVoice(const MixerVoice& voice, const MixOutput& output, uint32_t frames) noexcept;

/// Applies the master gain and the soft limiter, a knee at 0.8 that approaches 1, in place.
/// `firstFrame` is the index of `samples[0]` in the block.
void applyMaster(float* samples, uint32_t frames, const MasterRamp& ramp,
                 uint32_t firstFrame) noexcept;

}  // namespace tobrin
