#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "TobrinMixer.h"

namespace tobrin {

/// Frames mixed at a time: the work space stays in the first-level cache, a long block too.
constexpr uint32_t stretchFrames = 256;
/// Room past the end of every work buffer, so that whole vectors may be read and written.
constexpr size_t vectorSlack = 64;

/// One channel of one layer, and what it adds to a line.
struct LineSource {
  const float* samples = nullptr;
  uint64_t frames = 0;
  float gain = 0;  ///< in the first frame of a running ramp, else throughout
  float step = 0;  ///< change of the gain a frame
};

/// The weighted sum of several sources, which is formed before it is interpolated: layers of one
/// voice share their position, so interpolating the sum is interpolating each.
struct Line {
  std::array<LineSource, 2 * TB_LAYERS> sources;
  uint32_t count = 0;

  void add(const LineSource& source) noexcept { sources[count++] = source; }
};

/// A stretch of one voice, at most `stretchFrames` long and within its sound, during which its
/// gains are steady or on one ramp. Position and rate are fixed point as in `MixerVoice`.
struct VoiceStretch {
  std::array<Line, 2> lines;
  uint32_t lineCount = 1;
  /// Gains of a single line in the left and right output; lines that are two carry theirs inside.
  float panLeft = 1;
  float panRight = 1;
  uint64_t position = 0;
  uint64_t rate = 0;
  uint32_t frames = 0;
  uint32_t rampFrame = 0;  ///< frames of the ramp before this stretch
  bool ramping = false;
};

/// Room for lines to be summed into, and for the mix. Owned by the render thread.
struct MixScratch {
  static constexpr size_t front = 16;  ///< samples before a line, read but never heard
  static constexpr size_t lineFrames = front + 4 * stretchFrames + vectorSlack;

  alignas(64) std::array<std::array<float, lineFrames>, 2> lines{};
  alignas(64) std::array<std::array<float, lineFrames>, 2> steps{};
  alignas(64) std::array<std::array<float, stretchFrames + vectorSlack>, 2> mix{};
};

/// Gain across a block: `start + step * (i + 1)` in its i-th frame.
struct MasterRamp {
  float start = 1;
  float step = 0;
};

/// The arithmetic of the mixer for one instruction set. All of them give the same bits: each
/// frame is computed by the same operations in the same order, however wide the vectors and
/// wherever a block begins.
struct MixKernels {
  /// Adds a stretch to the mix from frame `offset` on; `channels` is 1 or 2.
  void (*addStretch)(const VoiceStretch& stretch, MixScratch& scratch, uint32_t channels,
                     uint32_t offset) noexcept;

  /// Writes `frames` of a channel of the mix to `output` under the master gain and the soft
  /// limiter, a knee at 0.8 that approaches 1. `firstFrame` is the stretch's place in its block.
  void (*finish)(const float* mix, float* output, uint32_t frames, const MasterRamp& ramp,
                 uint32_t firstFrame) noexcept;
};

/// The kernels for the best instruction set that this machine has. Not for the render thread.
const MixKernels& chooseMixKernels() noexcept;

}  // namespace tobrin
