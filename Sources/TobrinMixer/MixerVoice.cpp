#include "MixerVoice.h"

#include <cassert>

namespace tobrin {

void MixerVoice::rampTo(const std::array<float, TB_LAYERS>& gains, uint32_t frames) noexcept {
  assert(frames > 0);
  for (uint32_t layer = 0; layer < TB_LAYERS; ++layer) {
    const float from = gain(layer);
    rampFrom[layer] = from;
    rampStep[layer] = (gains[layer] - from) / static_cast<float>(frames);
  }
  target = gains;
  rampFrame = 0;
  rampLeft = frames;
  lines.channels = 0;
}

void MixerVoice::advance(uint32_t frames) noexcept {
  position += rate * frames;
  if (rampLeft == 0) return;
  assert(frames <= rampLeft);
  rampFrame += frames;
  rampLeft -= frames;
  if (rampLeft == 0) lines.channels = 0;
}

}  // namespace tobrin
