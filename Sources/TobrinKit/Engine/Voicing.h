/// How a key becomes a command for the mixer: which take, where in the stereo field, how loud and
/// how fast. The same for live playing and for offline rendering. Draws no numbers itself, so that
/// the order of draws stays with the caller. Thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "Base/KeyEvent.h"
#include "Base/SplitMix64.h"
#include "Engine/EngineSettings.h"
#include "Engine/StrokeMeter.h"
#include "Packs/LoadedPack.h"
#include "TobrinMixer.h"

namespace tobrin {

/// Random factors of one stroke, chosen at key-down and kept by its refinements.
struct StrokeVariation {
  float gain = 1;  ///< linear
  float rate = 1;  ///< of playback

  /// Within 6 % and 0.4 % of 1. Takes two draws, the gain's first.
  static StrokeVariation draw(SplitMix64& rng);
};

class Voicing final {
 public:
  /// Both outlive this object.
  Voicing(const LoadedPack& pack, const EngineSettings& settings)
      : pack_(pack), settings_(settings) {}

  /// Starts the four layers of the key's take as the voice `tag`; nothing where the pack keeps the
  /// key silent. Where the pack gives a key several takes, `tag` chooses: it differs for every
  /// stroke.
  [[nodiscard]] std::optional<TBCommand> press(uint32_t tag, uint16_t code,
                                               const StrokeStrength& strength,
                                               const StrokeVariation& variation) const;

  /// New weights for the voice `tag`, which a press of the key started; `gain` is that of its
  /// variation.
  [[nodiscard]] TBCommand reweigh(uint32_t tag, uint16_t code, const StrokeStrength& strength,
                                  float gain) const;

  /// Starts the key's release take, as loud as its press was hard (`relative` to a typical stroke);
  /// nothing where the pack has none for it.
  [[nodiscard]] std::optional<TBCommand> release(uint32_t tag, uint16_t code, float relative,
                                                 const StrokeVariation& variation) const;

 private:
  struct Take {
    KeyGroup group;
    std::size_t variant;
  };

  [[nodiscard]] std::optional<Take> take(uint32_t tag, uint16_t code,
                                         const LoadedPack::Variants* own) const;
  [[nodiscard]] TBCommand start(uint32_t tag, uint16_t code, float rate) const;
  void setWeights(TBCommand& command, const LoadedPack::Layers& layers,
                  const StrokeStrength& strength, float gain) const;

  const LoadedPack& pack_;
  const EngineSettings& settings_;
};

}  // namespace tobrin
