#include "VoicePool.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

namespace tobrin {

namespace {

// A gain that is NaN would reach every later frame, so it counts as silence.
float finiteOrZero(float gain) {
  return std::isfinite(gain) ? gain : 0.0F;
}

uint64_t fixedPointRate(float rate) {
  const bool accepted = rate > 0.25F && rate < 4.0F;
  return accepted ? static_cast<uint64_t>(rate * static_cast<float>(MixerVoice::one))
                  : MixerVoice::one;
}

std::array<float, TB_LAYERS> audibleGains(const MixerVoice& voice, const TBCommand& command) {
  std::array<float, TB_LAYERS> gains{};
  for (uint32_t layer = 0; layer < TB_LAYERS; ++layer) {
    if (voice.layers[layer].left != nullptr) gains[layer] = finiteOrZero(command.weights[layer]);
  }
  return gains;
}

// Constant power, unity at the centre.
void setPan(MixerVoice& voice, float pan) {
  const double side = std::isnan(pan) ? 0.0 : std::clamp(static_cast<double>(pan), -1.0, 1.0);
  const double angle = (side + 1.0) * std::numbers::pi / 4.0;
  voice.panLeft = static_cast<float>(std::cos(angle) * std::numbers::sqrt2);
  voice.panRight = static_cast<float>(std::sin(angle) * std::numbers::sqrt2);
}

uint32_t longestLayer(const TBCommand& command) {
  uint32_t frames = 0;
  for (const TBSample& layer : command.layers) {
    if (layer.left != nullptr) frames = std::max(frames, layer.frames);
  }
  return frames;
}

}  // namespace

bool VoicePool::apply(const TBCommand& command) noexcept {
  switch (command.type) {
    case TB_COMMAND_START:
      return start(command);
    case TB_COMMAND_SET_WEIGHTS:
      setWeights(command);
      return false;
    case TB_COMMAND_RELEASE_ALL:
      releaseAll();
      return false;
    default:
      return false;
  }
}

size_t VoicePool::slotForNewVoice() const noexcept {
  const auto free = static_cast<size_t>(std::countr_one(active_));
  if (free < TB_VOICES) return free;
  const auto oldest = std::ranges::min_element(voices_, {}, &MixerVoice::sequence);
  return static_cast<size_t>(oldest - voices_.begin());
}

bool VoicePool::start(const TBCommand& command) noexcept {
  const uint32_t length = longestLayer(command);
  if (length == 0) return false;
  const size_t slot = slotForNewVoice();
  assert(slot < TB_VOICES);
  active_ |= 1U << slot;
  MixerVoice& voice = voices_[slot];
  voice = MixerVoice{};
  voice.tag = command.tag;
  voice.sequence = ++sequence_;
  voice.length = length;
  voice.rate = fixedPointRate(command.rate);
  for (uint32_t layer = 0; layer < TB_LAYERS; ++layer) {
    const TBSample& sample = command.layers[layer];
    if (sample.left == nullptr) continue;
    const float* right = sample.right != nullptr ? sample.right : sample.left;
    voice.layers[layer] = {.left = sample.left, .right = right, .frames = sample.frames};
  }
  voice.target = audibleGains(voice, command);
  setPan(voice, command.pan);
  return true;
}

void VoicePool::setWeights(const TBCommand& command) noexcept {
  bool found = false;
  forEachActive([&](MixerVoice& voice) {
    if (found || voice.releasing || voice.tag != command.tag) return true;
    voice.rampTo(audibleGains(voice, command), fadeFrames_);
    return found = true;
  });
}

void VoicePool::releaseAll() noexcept {
  forEachActive([&](MixerVoice& voice) {
    voice.releasing = true;
    voice.rampTo({}, releaseFrames_);
    return true;
  });
}

}  // namespace tobrin
