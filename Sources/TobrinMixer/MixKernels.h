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
  const float* samples;  ///< the stretch's first
  uint64_t frames;       ///< from there to the layer's end
  float gain;            ///< in the first frame of a running ramp, else throughout
  float step;            ///< change of the gain a frame
};

/// The weighted sum of several sources, which is formed before it is interpolated: layers of one
/// voice share their position, so interpolating the sum is interpolating each.
struct Line {
  std::array<LineSource, size_t{2} * TB_LAYERS> sources;
  uint32_t count;
};

/// A stretch of one voice, at most `stretchFrames` long and within its sound, during which its
/// gains are steady or on one ramp. Position and rate are fixed point as in `MixerVoice`.
struct VoiceStretch {
  std::array<Line, 2> lines;
  uint32_t lineCount;  ///< 1 for mono sound or mono output
  /// Gains of a single line in the left and right output; lines that are two carry theirs inside.
  float panLeft, panRight;
  uint64_t first;     ///< whole part of the position in its first frame
  uint64_t fraction;  ///< and the rest
  uint64_t rate;
  uint32_t offset;  ///< place in the mix
  uint32_t frames;
  uint32_t rampFrame;  ///< frames of the ramp before this stretch
  bool ramping;
};

/// A stretch with its lines, the sums of its sources.
struct StretchWork {
  static constexpr size_t front = 16;  ///< samples before a line, read but never heard
  static constexpr size_t lineFrames = front + size_t{4} * stretchFrames + vectorSlack;
  using Samples = std::array<float, lineFrames>;

  alignas(64) std::array<Samples, 2> sums;
  alignas(64) std::array<Samples, 2> steps;  ///< how the sums change a frame on a ramp
  VoiceStretch stretch;
  bool windowed;  ///< the stretch is mixed in one go and needs no lines
};

using MixBuffer = std::array<std::array<float, stretchFrames + vectorSlack>, 2>;

/// Gain across a stretch: `start + step * (i + 1)` in its i-th frame.
struct MasterRamp {
  float start = 1;
  float step = 0;
};

/// The arithmetic of the mixer for one instruction set. All of them give the same bits: each
/// frame is computed by the same operations in the same order, however wide the vectors and
/// wherever a block begins.
struct MixKernels {
  /// Sums the sources of the stretch.
  void (*formLines)(StretchWork& work) noexcept;

  /// Adds the formed stretch to the mix; `channels` is 1 or 2.
  void (*addLines)(const StretchWork& work, MixBuffer& mix, uint32_t channels) noexcept;

  /// Writes `frames` of a channel of the mix to `output` under the master gain and the soft
  /// limiter, a knee at 0.8 that approaches 1.
  void (*finish)(const float* mix, float* output, uint32_t frames, const MasterRamp& ramp) noexcept;
};

/// The kernels for the best instruction set that this machine has. Not for the render thread.
const MixKernels& chooseMixKernels() noexcept;

}  // namespace tobrin
