/// Turns voices into blocks of sound. Made on any thread. Thread: render.
#pragma once

#include <array>
#include <cstdint>

#include "MixKernels.h"
#include "TobrinMixer.h"
#include "VoicePool.h"

namespace tobrin {

/// Where a block is written. `count` is 2, or 1 for mono: half the sum of both channels.
struct OutputChannels {
  std::array<float*, 2> samples;
  uint32_t count;
};

class BlockRenderer final {
 public:
  /// Chooses the instruction set. Both fade lengths are in frames.
  BlockRenderer(uint32_t fadeFrames, uint32_t releaseFrames) noexcept
      : pool_(fadeFrames, releaseFrames), kernels_(chooseMixKernels()) {}

  /// Carries out one command. Returns whether a voice started.
  bool apply(const TBCommand& command) noexcept { return pool_.apply(command); }

  /// Ends every voice at once.
  void silence() noexcept { pool_.silence(); }

  /// Overwrites `frames` frames, with the master gain moving to `master` across them.
  void render(const OutputChannels& output, uint32_t frames, float master) noexcept;

  [[nodiscard]] uint32_t activeVoices() const noexcept { return pool_.activeCount(); }

 private:
  void renderStretch(const OutputChannels& output, uint32_t firstFrame, uint32_t frames,
                     const MasterRamp& ramp) noexcept;
  bool renderVoice(MixerVoice& voice, uint32_t channels, uint32_t frames) noexcept;
  void addStretch(MixerVoice& voice, MixSpan span, uint32_t channels) noexcept;

  MixSpace space_;
  VoicePool pool_;
  const MixKernels& kernels_;
  float master_ = 1;
};

}  // namespace tobrin
