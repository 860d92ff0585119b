#include "ScalarMixer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tobrin {

namespace {

constexpr uint32_t fadeFrames = 192;

float softLimited(float sample) {
  const float size = std::abs(sample);
  if (size <= 0.8F) return sample;
  const float over = (size - 0.8F) / 0.2F;
  return std::copysign(0.8F + 0.2F * (over / (over + 1)), sample);
}

}  // namespace

void ScalarMixer::start(const TBCommand& command) {
  auto voice = std::ranges::find(voices_, false, &Voice::active);
  if (voice == voices_.end()) voice = voices_.begin();
  *voice = Voice{};
  voice->active = true;
  voice->tag = command.tag;
  voice->rate = static_cast<double>(command.rate);
  const float angle = (command.pan + 1) * std::numbers::pi_v<float> / 4;
  voice->panLeft = std::cos(angle) * std::numbers::sqrt2_v<float>;
  voice->panRight = std::sin(angle) * std::numbers::sqrt2_v<float>;
  for (std::size_t n = 0; n < TB_LAYERS; ++n) {
    TBSample layer = command.layers[n];
    if (layer.left == nullptr) continue;
    if (layer.right == nullptr) layer.right = layer.left;
    voice->layers[n] = layer;
    voice->gain[n] = voice->target[n] = command.weights[n];
    voice->length = std::max(voice->length, layer.frames);
  }
}

void ScalarMixer::setWeights(uint32_t tag, std::span<const float, TB_LAYERS> weights) {
  const auto voice = std::ranges::find(voices_, tag, &Voice::tag);
  if (voice == voices_.end()) return;
  for (std::size_t n = 0; n < TB_LAYERS; ++n) {
    voice->target[n] = weights[n];
    voice->step[n] = (weights[n] - voice->gain[n]) / static_cast<float>(fadeFrames);
  }
  voice->rampLeft = fadeFrames;
}

void ScalarMixer::advanceRamp(Voice& voice) {
  if (voice.rampLeft == 0) return;
  if (--voice.rampLeft == 0) {
    voice.gain = voice.target;
  } else {
    for (std::size_t n = 0; n < TB_LAYERS; ++n)
      voice.gain[n] += voice.step[n];
  }
}

void ScalarMixer::mixVoice(Voice& voice, float* left, float* right, uint32_t frames) {
  for (uint32_t i = 0; i < frames; ++i) {
    if (voice.position >= voice.length) {
      voice.active = false;
      return;
    }
    const auto k = static_cast<uint32_t>(voice.position);
    const auto fraction = static_cast<float>(voice.position - k);
    float mixLeft = 0;
    float mixRight = 0;
    for (std::size_t n = 0; n < TB_LAYERS; ++n) {
      const TBSample& layer = voice.layers[n];
      if (layer.left == nullptr || voice.gain[n] == 0 || k >= layer.frames) continue;
      const bool last = k + 1 >= layer.frames;
      const float nextLeft = last ? 0 : layer.left[k + 1];
      const float nextRight = last ? 0 : layer.right[k + 1];
      mixLeft += voice.gain[n] * (layer.left[k] + fraction * (nextLeft - layer.left[k]));
      mixRight += voice.gain[n] * (layer.right[k] + fraction * (nextRight - layer.right[k]));
    }
    advanceRamp(voice);
    left[i] += mixLeft * voice.panLeft;
    right[i] += mixRight * voice.panRight;
    voice.position += voice.rate;
  }
}

void ScalarMixer::render(float* left, float* right, uint32_t frames) {
  std::fill_n(left, frames, 0.0F);
  std::fill_n(right, frames, 0.0F);
  for (Voice& voice : voices_) {
    if (voice.active) mixVoice(voice, left, right, frames);
  }
  for (uint32_t i = 0; i < frames; ++i) {
    left[i] = softLimited(left[i]);
    right[i] = softLimited(right[i]);
  }
}

}  // namespace tobrin
