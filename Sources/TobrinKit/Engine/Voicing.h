/// Pure logic that fills a mixer command for a key: which take, where in the stereo field, how the
/// tier weights combine with the pack's gains. Thread: any.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "Base/KeyEvent.h"
#include "Engine/EngineSettings.h"
#include "Packs/LoadedPack.h"
#include "TobrinMixer.h"

namespace tobrin {

struct Voicing {
  /// Random factors of one stroke, chosen at key-down and kept by its refinements.
  struct Variation {
    float gain = 1;
    float rate = 1;
  };

  /// The take a key plays in a pack; the same key always plays the same take.
  static std::size_t variant(uint16_t code, const LoadedPack& pack, KeyGroup group);

  /// The key's fixed pitch factor, within 1.2 % of 1.
  static float detune(uint16_t code);

  /// -0.6 to +0.6, by the key's column and the stereo width.
  static float pan(uint16_t code, const EngineSettings& settings);

  /// Layer weights of a stroke: tier weights times `gains` times edge gain times `gain`; as many as
  /// the shorter list, the rest 0.
  static std::array<float, tierCount> weights(float position, float relative,
                                              std::span<const float> gains, bool blend, float gain);

  /// Loudness of a release by the strength of its press: the root, within 0.5 to 1.3.
  static float releaseGain(float relative);

  /// Copies the first four samples into the command; the other layers stay as they were.
  static void setLayers(TBCommand& command, std::span<const TBSample> samples);

  /// Writes all four weights, 0 past the end of the list.
  static void setWeights(TBCommand& command, std::span<const float> weights);
};

}  // namespace tobrin
