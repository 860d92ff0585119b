/// Sends the commands for keys to the mixer, by the current pack and settings, and gives the voices
/// their tags. Where the output does not run, commands are dropped: else they would wait in the
/// ring and all sound at once when it does. Thread: conductor.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "Base/SplitMix64.h"
#include "Engine/AudioOutput.h"
#include "Engine/EngineSettings.h"
#include "Engine/KeyMask.h"
#include "Engine/StrokeMeter.h"
#include "Engine/VoiceBoost.h"
#include "Engine/Voicing.h"
#include "Packs/LoadedPack.h"

namespace tobrin {

class VoicePlayer final {
 public:
  /// `audio` and `settings` outlive the player.
  VoicePlayer(AudioOutput& audio, const EngineSettings& settings);

  /// Whether each stroke gets the sound of another key.
  void setMasked(bool masked) { mask_.setOn(masked); }

  /// The most that strokes from now on may be louder than in the pack, as a factor of 1 to 2.
  void setBoost(float boost) { boost_.set(boost); }

  /// Returns the old pack, whose voices may still sound.
  [[nodiscard]] std::shared_ptr<const LoadedPack> exchangePack(
      std::shared_ptr<const LoadedPack> pack);
  [[nodiscard]] bool hasPack() const { return pack_ != nullptr; }

  /// The sound of a press.
  struct Voice {
    uint32_t tag = 0;   ///< 0: there is none
    uint16_t code = 0;  ///< of the key whose takes it plays
    VoiceBoost::Peaks peaks{};
  };

  /// Starts a key's press; no voice without a pack, nor with a full ring.
  Voice press(uint16_t code, const StrokeStrength& strength, const StrokeVariation& variation);

  /// Gives the voice of a press new weights.
  void reweigh(const Voice& voice, const StrokeStrength& strength, float gain);

  /// Plays the key's release, where the pack has one: as loud as the press was hard, give or take
  /// a draw of `rng`.
  void release(uint16_t code, float relative, SplitMix64& rng);

 private:
  [[nodiscard]] Voicing voicing() const { return {*pack_, settings_}; }
  uint32_t nextTag();
  VoiceBoost::Peaks raise(TBCommand& start);
  bool send(const TBCommand& command);

  AudioOutput& audio_;
  const EngineSettings& settings_;
  std::shared_ptr<const LoadedPack> pack_;  // shared with those who list it; null: silence
  KeyMask mask_;
  VoiceBoost boost_;
  uint32_t lastTag_ = 0;
};

}  // namespace tobrin
