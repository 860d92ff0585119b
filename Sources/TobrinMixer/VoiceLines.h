/// What the layers of a voice add up to before they are interpolated. Thread: render.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "TobrinMixer.h"

namespace tobrin {

struct MixerVoice;

/// One channel of one layer, and what it adds to a line.
struct LineSource {
  const float* samples;  ///< the layer's first
  uint64_t frames;       ///< of the layer
  float gain;            ///< in the first frame of a running ramp, else throughout
  float step;            ///< change of the gain a frame
};

/// The weighted sum of several sources, which is formed before it is interpolated: layers of one
/// voice share their position, so interpolating the sum is interpolating each.
struct Line {
  std::array<LineSource, size_t{2} * TB_LAYERS> sources;
  uint32_t count = 0;
};

/// What the layers of a voice add up to. Holds from block to block: until a ramp begins or ends, a
/// source ends, or the output gets another number of channels.
struct VoiceLines {
  std::array<Line, 2> lines;
  uint32_t channels = 0;   ///< of the output they are for, 0 when they are to be gathered again
  uint32_t lineCount = 0;  ///< 1 for mono sound or mono output; two carry the voice's panning
  uint64_t shortest = 0;   ///< frames of the source that ends first

  /// Whether nothing more is heard, even if a layer of weight 0 still goes on.
  [[nodiscard]] bool silent() const noexcept { return lines[0].count == 0; }

  [[nodiscard]] bool hold(uint64_t frame, uint32_t outputChannels) const noexcept {
    return channels == outputChannels && frame < shortest;
  }
};

/// Gathers the lines of `voice` from its present position on, for 1 or 2 output channels. Layers
/// that stay silent are left out.
void gatherLines(MixerVoice& voice, uint32_t channels) noexcept;

}  // namespace tobrin
