/// The arithmetic of the mixer, compiled once for every instruction set, and the work space it
/// needs. Thread: render.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "MixerVoice.h"

namespace tobrin {

/// Frames mixed at a time: few, so that the work space fits the first-level cache.
constexpr uint32_t stretchFrames = 256;
/// Room past the end of every work buffer, so that whole vectors may be read and written.
constexpr size_t vectorSlack = 64;

using MixBuffer = std::array<std::array<float, stretchFrames + vectorSlack>, 2>;

/// A part of the mix: `frames` frames, at least one, from `offset` on.
struct MixSpan {
  uint32_t offset;
  uint32_t frames;
};

/// A stretch of a voice whose lines are summed and not yet interpolated. Position and rate are
/// fixed point as in `MixerVoice`.
struct FormedStretch {
  static constexpr size_t front = 16;  ///< samples before a line, read but never heard
  static constexpr size_t lineFrames = front + size_t{4} * stretchFrames + vectorSlack;
  using Samples = std::array<float, lineFrames>;

  alignas(64) std::array<Samples, 2> sums;   ///< from the whole part of the position on
  alignas(64) std::array<Samples, 2> steps;  ///< how the sums change a frame on a ramp
  uint64_t fraction;                         ///< of the position
  uint64_t rate;
  MixSpan span;
  uint32_t rampFrame;  ///< frames of the ramp before this stretch
  bool ramping;
  uint32_t channels;   ///< of the output, 1 or 2
  uint32_t lineCount;  ///< for this and the next see `VoiceLines`
  float panLeft, panRight;
};

/// Where voices are added up.
struct MixSpace {
  alignas(64) MixBuffer mix{};
  std::array<FormedStretch, 2> formed{};  ///< used in turn
  FormedStretch* pending = nullptr;       ///< formed, but not yet added to the mix
};

/// Gain across a stretch: `start + step * (i + 1)` in its i-th frame.
struct MasterRamp {
  float start = 1;
  float step = 0;
};

/// The arithmetic of the mixer for one instruction set. All of them give the same bits: each
/// frame is computed by the same operations in the same order, for vectors of any width and
/// for blocks that begin anywhere.
struct MixKernels {
  /// Adds the sound of `voice` from its present position on. The span must not pass the end of the
  /// sound or of a running ramp; the voice's lines must hold and must not be silent. May leave the
  /// stretch pending.
  void (*addStretch)(const MixerVoice& voice, MixSpan span, MixSpace& space) noexcept;

  /// Adds the pending stretch, if there is one.
  void (*addPending)(MixSpace& space) noexcept;

  /// Writes `frames` of a channel of the mix to `output` under the master gain and the soft
  /// limiter, a knee at 0.8 that approaches 1.
  void (*finish)(const float* mix, float* output, uint32_t frames, const MasterRamp& ramp) noexcept;
};

/// The kernels for the best instruction set that this machine has. Not for the render thread.
const MixKernels& chooseMixKernels() noexcept;

}  // namespace tobrin
