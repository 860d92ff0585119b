#include "Force/ForceClassifier.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tobrin {
namespace {

std::array<float, tierCount> logarithmsOfTierCenters() {
  std::array<float, tierCount> logarithms{};
  std::transform(ForceClassifier::tierCenters.begin(), ForceClassifier::tierCenters.end(),
                 logarithms.begin(), [](float center) { return std::log2(center); });
  return logarithms;
}

}  // namespace

// Comparisons are written so that a NaN takes the harmless branch: no strength, the softest tier.

float ForceClassifier::relative(float peak, float noise) const {
  constexpr float smallestReference = 1e-5f;
  constexpr float smallestGain = 0.05f;
  const float floor = 1.5f * noise;
  const float above = peak - floor;
  const float typical = reference_ - floor;
  const float denominator = typical > smallestReference ? typical : smallestReference;
  const float gain = sensitivity > smallestGain ? sensitivity : smallestGain;
  return above >= 0 ? gain * (above / denominator) : 0.0f;
}

float ForceClassifier::tierPosition(float relative) {
  static const std::array<float, tierCount> centers = logarithmsOfTierCenters();
  constexpr float smallest = 0.0001f;
  const float x = std::log2(relative > smallest ? relative : smallest);
  if (x <= centers.front()) return 0;
  for (std::size_t i = 0; i + 1 < tierCount; ++i)
    if (x < centers[i + 1])
      return static_cast<float>(i) + (x - centers[i]) / (centers[i + 1] - centers[i]);
  return tierCount - 1;
}

void ForceClassifier::record(float peak) {
  if (!std::isfinite(peak) || peak <= 0) return;
  history_.push_back(peak);
  if (history_.size() > historyLimit) history_.erase(history_.begin());
  if (history_.size() < minimumHistory) return;
  std::vector<float> sorted = history_;
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  reference_ = std::min(4.0f * baseReference_, std::max(0.25f * baseReference_, *middle));
}

void ForceClassifier::reset() {
  history_.clear();
  reference_ = baseReference_;
}

std::array<float, tierCount> ForceClassifier::weights(float position, bool blend) {
  constexpr float hardest = tierCount - 1;
  constexpr float smallestBlend = 0.0001f;
  constexpr float quarterTurn = std::numbers::pi_v<float> / 2;
  std::array<float, tierCount> weights{};
  const float clamped = position > 0 ? std::min(position, hardest) : 0.0f;
  if (!blend) {
    weights[static_cast<std::size_t>(std::lround(clamped))] = 1;
    return weights;
  }
  const auto lower = static_cast<std::size_t>(clamped);
  const float fraction = clamped - static_cast<float>(lower);
  if (fraction < smallestBlend) {
    weights[lower] = 1;
  } else {
    weights[lower] = std::cos(fraction * quarterTurn);
    weights[lower + 1] = std::sin(fraction * quarterTurn);
  }
  return weights;
}

float ForceClassifier::edgeGain(float relative) {
  if (relative < tierCenters.front())
    return std::max(std::sqrt(std::max(relative, 0.0f) / tierCenters.front()), 0.45f);
  if (relative > tierCenters.back()) return std::min(std::pow(relative * 0.25f, 0.25f), 1.25f);
  return 1;
}

}  // namespace tobrin
