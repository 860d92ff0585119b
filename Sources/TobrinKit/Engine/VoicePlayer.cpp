#include "Engine/VoicePlayer.h"

#include <utility>

#include "Input/KeyLayout.h"

namespace tobrin {

std::shared_ptr<const LoadedPack> VoicePlayer::exchangePack(
    std::shared_ptr<const LoadedPack> pack) {
  return std::exchange(pack_, std::move(pack));
}

VoicePlayer::Take VoicePlayer::take(uint16_t code) const {
  const KeyGroup group = KeyLayout::group(code);
  return {group, Voicing::variant(code, *pack_, group)};
}

TBCommand VoicePlayer::startCommand(uint16_t code, float rate) {
  if (++lastTag_ == 0) lastTag_ = 1;  // 0 names no voice
  TBCommand command{};
  command.type = TB_COMMAND_START;
  command.tag = lastTag_;
  command.pan = Voicing::pan(code, settings_);
  command.rate = rate * Voicing::detune(code);
  return command;
}

void VoicePlayer::setWeights(TBCommand& command, const LoadedPack::Layers& layers,
                             const StrokeStrength& strength, float gain) const {
  Voicing::setWeights(command, Voicing::weights(strength.position, strength.relative, layers.gains,
                                                settings_.blendTiers, gain));
}

uint32_t VoicePlayer::press(uint16_t code, const StrokeStrength& strength,
                            const Voicing::Variation& variation) {
  if (!pack_) return 0;
  const auto [group, variant] = take(code);
  const LoadedPack::Layers layers = pack_->layers(group, variant);
  TBCommand command = startCommand(code, variation.rate);
  Voicing::setLayers(command, layers.samples);
  setWeights(command, layers, strength, variation.gain);
  return send(command) ? command.tag : 0;
}

void VoicePlayer::reweigh(uint32_t tag, uint16_t code, const StrokeStrength& strength, float gain) {
  if (!pack_) return;
  const auto [group, variant] = take(code);
  TBCommand command{};
  command.type = TB_COMMAND_SET_WEIGHTS;
  command.tag = tag;
  setWeights(command, pack_->layers(group, variant), strength, gain);
  send(command);
}

void VoicePlayer::release(uint16_t code, float relative, SplitMix64& rng) {
  constexpr float level = 0.8f;  // releases are quieter than presses
  if (!pack_) return;
  const auto [group, variant] = take(code);
  const std::optional<LoadedPack::Take> released = pack_->release(group, variant);
  if (!released) return;
  const auto jitter = static_cast<float>(1 + 0.05 * rng.signedUnit());
  TBCommand command = startCommand(code, 1);
  command.layers[0] = released->sample;
  command.weights[0] = Voicing::releaseGain(relative) * released->gain * level * jitter;
  send(command);
}

bool VoicePlayer::send(const TBCommand& command) {
  return !audio_.isRunning() || tb_mixer_push(audio_.mixer(), &command);
}

}  // namespace tobrin
