#include "Engine/Voicing.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

#include "Force/ForceClassifier.h"
#include "Input/KeyLayout.h"

namespace tobrin {
namespace {

static_assert(tierCount == TB_LAYERS, "a voice has one layer a tier");

/// The key's fixed pitch factor, within 1.2 % of 1.
float detune(uint16_t code) {
  constexpr double range = 0.012;
  constexpr int steps = 1000;  // to either side
  const int step = static_cast<int>((keyIdentity(code) >> 24) % (2 * steps + 1)) - steps;
  return static_cast<float>(1 + range * step / steps);
}

/// Loudness of a release by the strength of its press: the root, within 0.5 to 1.3.
float releaseGain(float relative) {
  return std::clamp(std::sqrt(relative), 0.5f, 1.3f);
}

}  // namespace

StrokeVariation StrokeVariation::draw(SplitMix64& rng) {
  const double gain = 1 + 0.06 * rng.signedUnit();
  const double rate = 1 + 0.004 * rng.signedUnit();
  return {static_cast<float>(gain), static_cast<float>(rate)};
}

std::optional<TBCommand> Voicing::press(uint32_t tag, uint16_t code, const StrokeStrength& strength,
                                        const StrokeVariation& variation) const {
  const auto played = take(tag, code, pack_.pressVariants(code));
  if (!played) return std::nullopt;
  const LoadedPack::Layers layers = pack_.layers(played->group, played->variant);
  TBCommand command = start(tag, code, variation.rate);
  std::copy(layers.samples.begin(), layers.samples.end(), command.layers);
  setWeights(command, layers, strength, variation.gain);
  return command;
}

TBCommand Voicing::reweigh(uint32_t tag, uint16_t code, const StrokeStrength& strength,
                           float gain) const {
  assert(tag != 0);
  TBCommand command{};
  command.type = TB_COMMAND_SET_WEIGHTS;
  command.tag = tag;
  if (const auto played = take(tag, code, pack_.pressVariants(code)))
    setWeights(command, pack_.layers(played->group, played->variant), strength, gain);
  return command;
}

std::optional<TBCommand> Voicing::release(uint32_t tag, uint16_t code, float relative,
                                          const StrokeVariation& variation) const {
  constexpr float level = 0.8f;  // releases are quieter than presses
  const auto played = take(tag, code, pack_.releaseVariants(code));
  if (!played) return std::nullopt;
  const auto released = pack_.release(played->group, played->variant);
  if (!released) return std::nullopt;
  TBCommand command = start(tag, code, variation.rate);
  command.layers[0] = released->sample;
  command.weights[0] = variation.gain * releaseGain(relative) * released->gain * level;
  return command;
}

/// One of the takes `own` that the pack gives the key. A key without them always plays the same
/// take of its group.
std::optional<Voicing::Take> Voicing::take(uint32_t tag, uint16_t code,
                                           const LoadedPack::Variants* own) const {
  const KeyGroup group = keyGroupOf(code);
  const std::size_t takes = pack_.variantCount(group);
  if (takes == 0) return std::nullopt;
  if (own == nullptr) return Take{group, static_cast<std::size_t>(keyIdentity(code) % takes)};
  if (own->empty()) return std::nullopt;
  return Take{group, (*own)[static_cast<std::size_t>(SplitMix64(tag).next() % own->size())]};
}

TBCommand Voicing::start(uint32_t tag, uint16_t code, float rate) const {
  constexpr float widestPan = 0.6f;
  TBCommand command{};
  command.type = TB_COMMAND_START;
  command.tag = tag;
  command.pan = keyPan(code) * settings_.spatial * widestPan;
  command.rate = rate * detune(code);
  return command;
}

void Voicing::setWeights(TBCommand& command, const LoadedPack::Layers& layers,
                         const StrokeStrength& strength, float gain) const {
  const auto tiers = ForceClassifier::weights(strength.position, settings_.blendTiers);
  const float edge = ForceClassifier::edgeGain(strength.relative);
  for (std::size_t tier = 0; tier < tierCount; ++tier)
    command.weights[tier] = gain * (edge * (tiers[tier] * layers.gains[tier]));
}

}  // namespace tobrin
