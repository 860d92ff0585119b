#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "MixerVoice.h"
#include "TobrinMixer.h"

namespace tobrin {

/// The voices of one mixer and what the commands do to them. Thread: render.
class VoicePool final {
 public:
  VoicePool(uint32_t fadeFrames, uint32_t releaseFrames) noexcept
      : fadeFrames_(fadeFrames), releaseFrames_(releaseFrames) {}

  /// Carries out one command. Returns whether a voice started.
  bool apply(const TBCommand& command) noexcept;

  [[nodiscard]] std::span<MixerVoice> voices() noexcept { return voices_; }
  [[nodiscard]] uint32_t activeCount() const noexcept;

 private:
  bool start(const TBCommand& command) noexcept;
  void setWeights(const TBCommand& command) noexcept;
  void releaseAll() noexcept;
  MixerVoice& slotForNewVoice() noexcept;

  std::array<MixerVoice, TB_VOICES> voices_;
  uint64_t sequence_ = 0;
  uint32_t fadeFrames_;
  uint32_t releaseFrames_;
};

}  // namespace tobrin
