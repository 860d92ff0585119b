#include "Engine/VoiceBoost.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tobrin {
namespace {

// What a boosted voice may reach. The limiter's knee is at 0.8, and the hardest strokes of the
// starter packs reach 1.1 at full volume: up to here a boost adds hardly any distortion to theirs,
// and less than one can hear, 30 dB below the sound, to all others.
constexpr float ceiling = 0.9F;

/// The larger of the mixer's gains for the two sides.
float widestGain(float pan) {
  const float angle = (1 + std::min(std::abs(pan), 1.0F)) * std::numbers::pi_v<float> / 4;
  return std::sin(angle) * std::numbers::sqrt2_v<float>;
}

float loudestOf(const float* samples, uint32_t frames, float atLeast) {
  for (uint32_t i = 0; i < frames; ++i)
    atLeast = std::max(atLeast, std::abs(samples[i]));
  return atLeast;
}

}  // namespace

void VoiceBoost::set(float wish) {
  wish_ = std::clamp(wish, 1.0F, most);
}

float VoiceBoost::loudest(const TBSample& sample) {
  if (sample.left == nullptr) return 0;
  const auto [entry, isNew] = loudest_.try_emplace(sample.left, 0.0F);
  if (!isNew) return entry->second;
  entry->second = loudestOf(sample.left, sample.frames, 0);
  if (sample.right != nullptr && sample.right != sample.left)
    entry->second = loudestOf(sample.right, sample.frames, entry->second);
  return entry->second;
}

VoiceBoost::Peaks VoiceBoost::peaks(const TBCommand& start) {
  Peaks peaks{};
  if (wish_ == 1) return peaks;
  std::ranges::transform(start.layers, peaks.begin(), [&](const TBSample& sample) {
    return loudest(sample) * widestGain(start.pan);
  });
  return peaks;
}

void VoiceBoost::raise(TBCommand& command, const Peaks& peaks, float volume) const {
  float reached = 0;
  for (std::size_t layer = 0; layer < peaks.size(); ++layer)
    reached += peaks[layer] * command.weights[layer] * volume;
  if (!(reached > 0)) return;
  const float gain = std::clamp(ceiling / reached, 1.0F, wish_);
  for (float& weight : command.weights)
    weight *= gain;
}

}  // namespace tobrin
