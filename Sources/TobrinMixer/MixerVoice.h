/// One sounding voice: what it plays, where it is, and how its gains move. Thread: render.
#pragma once

#include <array>
#include <cstdint>

#include "TobrinMixer.h"
#include "VoiceLines.h"

namespace tobrin {

/// One layer of a sounding voice; `right` equals `left` for mono sound, both are null when empty.
struct VoiceLayer {
  const float* left = nullptr;
  const float* right = nullptr;
  uint64_t frames = 0;
};

/// Positions and rates are fixed-point numbers with `fractionBits` binary places. A float rate
/// between 0.25 and 4 is a whole number of those units, so positions are exact as far as a voice
/// may run, and so is the count of frames it has left.
struct MixerVoice {
  static constexpr int fractionBits = 25;
  static constexpr uint64_t one = uint64_t{1} << fractionBits;

  bool releasing = false;  ///< fading out to its end
  uint32_t tag = 0;
  uint64_t sequence = 0;  ///< number among the voices started; the smallest is the oldest
  std::array<VoiceLayer, TB_LAYERS> layers;
  std::array<float, TB_LAYERS> target{};    ///< gains once no ramp runs
  std::array<float, TB_LAYERS> rampFrom{};  ///< gains in the ramp's first frame
  std::array<float, TB_LAYERS> rampStep{};  ///< change a frame while the ramp runs
  uint32_t rampFrame = 0;                   ///< frames of the ramp already played
  uint32_t rampLeft = 0;                    ///< frames of the ramp still to come
  uint32_t length = 0;                      ///< frames of the longest layer
  uint64_t position = 0;                    ///< fixed point, frames into the samples
  uint64_t rate = one;                      ///< fixed point, sample frames per output frame
  float panLeft = 1;
  float panRight = 1;
  VoiceLines lines;  ///< gathered from the above while the voice sounds

  /// Whole part of the position.
  [[nodiscard]] uint64_t frame() const noexcept { return position >> fractionBits; }

  /// The rest of the position, fixed point.
  [[nodiscard]] uint64_t fraction() const noexcept { return position & (one - 1); }

  /// The gain of `layer` in the next frame.
  [[nodiscard]] float gain(uint32_t layer) const noexcept {
    if (rampLeft == 0) return target[layer];
    return rampFrom[layer] + rampStep[layer] * static_cast<float>(rampFrame);
  }

  /// Starts a ramp of `frames` from the present gains to `gains`. The lines are then to be
  /// gathered again.
  void rampTo(const std::array<float, TB_LAYERS>& gains, uint32_t frames) noexcept;

  /// Whether all of the next `frames` frames, at least one, lie within the sound.
  [[nodiscard]] bool lasts(uint32_t frames) const noexcept {
    // cppcheck-suppress signConversion; there is a frame
    return position + rate * (uint64_t{frames} - 1) < end();
  }

  /// Frames until the position reaches the end, 0 when it has.
  [[nodiscard]] uint64_t framesLeft() const noexcept {
    return position >= end() ? 0 : (end() - position + rate - 1) / rate;
  }

  [[nodiscard]] uint64_t end() const noexcept { return uint64_t{length} << fractionBits; }

  /// Moves on by `frames`, which must not pass the end of a running ramp.
  void advance(uint32_t frames) noexcept;
};

}  // namespace tobrin
