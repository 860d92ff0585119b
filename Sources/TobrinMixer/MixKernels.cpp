#include "MixKernels.h"

#include <algorithm>
#include <cmath>

namespace tobrin {

namespace {

float sampleAt(const float* samples, uint64_t frames, uint64_t index, float fraction) {
  if (index >= frames) return 0;
  const float here = samples[index];
  const float next = index + 1 < frames ? samples[index + 1] : 0.0F;
  return here + fraction * (next - here);
}

float softLimit(float sample) {
  const float size = std::abs(sample);
  if (size <= 0.8F) return sample;
  if (std::isnan(size)) return 0;
  const float limited = std::min(1.0F - 0.04F / (size - 0.6F), 0x1.fffffep-1F);
  return std::copysign(limited, sample);
}

}  // namespace

void mixVoice(const MixerVoice& voice, const MixOutput& output, uint32_t frames) noexcept {
  uint64_t position = voice.position;
  for (uint32_t i = 0; i < frames; ++i, position += voice.rate) {
    const uint64_t index = position >> MixerVoice::fractionBits;
    const float fraction =
        static_cast<float>(position & (MixerVoice::one - 1)) / static_cast<float>(MixerVoice::one);
    float left = 0;
    float right = 0;
    for (uint32_t n = 0; n < TB_LAYERS; ++n) {
      const VoiceLayer& layer = voice.layers[n];
      if (layer.left == nullptr) continue;
      const float gain =
          voice.rampLeft == 0
              ? voice.target[n]
              : voice.rampFrom[n] + voice.rampStep[n] * static_cast<float>(voice.rampFrame + i);
      if (gain == 0) continue;
      left += gain * sampleAt(layer.left, layer.frames, index, fraction);
      right += gain * sampleAt(layer.right, layer.frames, index, fraction);
    }
    left *= voice.panLeft;
    right *= voice.panRight;
    if (output.right == nullptr) {
      output.left[i] += 0.5F * (left + right);
    } else {
      output.left[i] += left;
      output.right[i] += right;
    }
  }
}

void applyMaster(float* samples, uint32_t frames, const MasterRamp& ramp,
                 uint32_t firstFrame) noexcept {
  for (uint32_t i = 0; i < frames; ++i) {
    const float gain = ramp.start + ramp.step * static_cast<float>(firstFrame + i + 1);
    samples[i] = softLimit(gain * samples[i]);
  }
}

}  // namespace tobrin
