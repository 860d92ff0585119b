/// Turns keys into commands for the mixer, by the current pack and settings, and hands out the
/// voices' tags. Where the output does not run, commands go nowhere: nothing piles up in the ring
/// to sound all at once when it does. Owned by the conductor's queue.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "Base/SplitMix64.h"
#include "Engine/AudioOutput.h"
#include "Engine/EngineSettings.h"
#include "Engine/StrokeMeter.h"
#include "Engine/Voicing.h"
#include "Packs/LoadedPack.h"

namespace tobrin {

class VoicePlayer final {
 public:
  /// `audio` and `settings` outlive the player.
  VoicePlayer(AudioOutput& audio, const EngineSettings& settings)
      : audio_(audio), settings_(settings) {}

  /// Gives the old pack back, whose voices may still sound.
  [[nodiscard]] std::shared_ptr<const LoadedPack> exchangePack(
      std::shared_ptr<const LoadedPack> pack);
  [[nodiscard]] bool hasPack() const { return pack_ != nullptr; }

  /// Starts a key's press and returns its voice's tag; 0 without a pack and with a full ring.
  uint32_t press(uint16_t code, const StrokeStrength& strength,
                 const Voicing::Variation& variation);

  /// Weights the voice of a press anew.
  void reweigh(uint32_t tag, uint16_t code, const StrokeStrength& strength, float gain);

  /// Plays the key's release, where the pack has one: as loud as the press was hard, give or take
  /// a draw of `rng`.
  void release(uint16_t code, float relative, SplitMix64& rng);

 private:
  struct Take {
    KeyGroup group;
    std::size_t variant;
  };

  [[nodiscard]] Take take(uint16_t code) const;
  [[nodiscard]] TBCommand startCommand(uint16_t code, float rate);
  void setWeights(TBCommand& command, const LoadedPack::Layers& layers,
                  const StrokeStrength& strength, float gain) const;
  bool send(const TBCommand& command);

  AudioOutput& audio_;
  const EngineSettings& settings_;
  std::shared_ptr<const LoadedPack> pack_;  // shared with whoever lists it; null: silence
  uint32_t lastTag_ = 0;
};

}  // namespace tobrin
