#include "Engine/Voicing.h"

#include <algorithm>
#include <cmath>

#include "Force/ForceClassifier.h"
#include "Input/KeyLayout.h"

namespace tobrin {
namespace {

static_assert(tierCount == TB_LAYERS, "a voice has one layer a tier");

}  // namespace

std::size_t Voicing::variant(uint16_t code, const LoadedPack& pack, KeyGroup group) {
  const std::size_t takes = std::max<std::size_t>(pack.variantCount(group), 1);
  return static_cast<std::size_t>(KeyLayout::identity(code) % takes);
}

float Voicing::detune(uint16_t code) {
  constexpr double range = 0.012;
  constexpr int steps = 1000;  // to either side
  const int step = static_cast<int>((KeyLayout::identity(code) >> 24) % (2 * steps + 1)) - steps;
  return static_cast<float>(1 + range * step / steps);
}

float Voicing::pan(uint16_t code, const EngineSettings& settings) {
  constexpr float widest = 0.6f;
  return KeyLayout::pan(code) * settings.spatial * widest;
}

std::array<float, tierCount> Voicing::weights(float position, float relative,
                                              std::span<const float> gains, bool blend,
                                              float gain) {
  const std::array<float, tierCount> tiers = ForceClassifier::weights(position, blend);
  const float edge = ForceClassifier::edgeGain(relative);
  std::array<float, tierCount> weights{};
  for (std::size_t i = 0; i < std::min(tiers.size(), gains.size()); ++i)
    weights[i] = gain * (edge * (tiers[i] * gains[i]));
  return weights;
}

float Voicing::releaseGain(float relative) {
  return std::clamp(std::sqrt(relative), 0.5f, 1.3f);
}

void Voicing::setLayers(TBCommand& command, std::span<const TBSample> samples) {
  std::copy_n(samples.begin(), std::min<std::size_t>(samples.size(), TB_LAYERS), command.layers);
}

void Voicing::setWeights(TBCommand& command, std::span<const float> weights) {
  for (std::size_t i = 0; i < TB_LAYERS; ++i)
    command.weights[i] = i < weights.size() ? weights[i] : 0;
}

}  // namespace tobrin
