/// The voices of one mixer and what the commands do to them. Thread: render.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "MixerVoice.h"
#include "TobrinMixer.h"

namespace tobrin {

class VoicePool final {
 public:
  VoicePool(uint32_t fadeFrames, uint32_t releaseFrames) noexcept
      : fadeFrames_(fadeFrames), releaseFrames_(releaseFrames) {}

  /// Carries out one command. Returns whether a voice started.
  bool apply(const TBCommand& command) noexcept;

  /// Ends every voice at once.
  void silence() noexcept { active_ = 0; }

  [[nodiscard]] bool silent() const noexcept { return active_ == 0; }
  [[nodiscard]] uint32_t activeCount() const noexcept {
    return static_cast<uint32_t>(std::popcount(active_));
  }

  /// Calls `render` with every sounding voice, lowest slot first; a voice ends when it returns
  /// false.
  template <typename Render>
  void forEachActive(Render render) noexcept {
    for (uint32_t left = active_; left != 0; left &= left - 1) {
      const int slot = std::countr_zero(left);
      if (!render(voices_[static_cast<size_t>(slot)])) active_ &= ~(1U << slot);
    }
  }

 private:
  bool start(const TBCommand& command) noexcept;
  void setWeights(const TBCommand& command) noexcept;
  void releaseAll() noexcept;
  [[nodiscard]] size_t slotForNewVoice() const noexcept;

  static_assert(TB_VOICES == 32);
  uint32_t active_ = 0;  ///< one bit a slot
  std::array<MixerVoice, TB_VOICES> voices_;
  uint64_t sequence_ = 0;
  uint32_t fadeFrames_;
  uint32_t releaseFrames_;
};

}  // namespace tobrin
