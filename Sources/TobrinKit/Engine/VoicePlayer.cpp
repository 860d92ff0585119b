#include "Engine/VoicePlayer.h"

#include <cassert>
#include <random>
#include <utility>

namespace tobrin {

namespace {

uint64_t unguessableSeed() {
  std::random_device device;
  return uint64_t{device()} << 32 | device();
}

}  // namespace

VoicePlayer::VoicePlayer(AudioOutput& audio, const EngineSettings& settings)
    : audio_(audio), settings_(settings), mask_(unguessableSeed()) {}

std::shared_ptr<const LoadedPack> VoicePlayer::exchangePack(
    std::shared_ptr<const LoadedPack> pack) {
  if (pack) mask_.setPack(*pack);
  boost_.forgetSamples();
  return std::exchange(pack_, std::move(pack));
}

uint32_t VoicePlayer::nextTag() {
  if (++lastTag_ == 0) lastTag_ = 1;  // 0 names no voice
  return lastTag_;
}

VoicePlayer::Voice VoicePlayer::press(uint16_t code, const StrokeStrength& strength,
                                      const StrokeVariation& variation) {
  if (!pack_) return {};
  const uint16_t sound = mask_.soundOf(code);
  auto command = voicing().press(nextTag(), sound, strength, variation);
  if (!command) return {};
  const Voice voice{command->tag, sound, raise(*command)};
  return send(*command) ? voice : Voice{};
}

void VoicePlayer::reweigh(const Voice& voice, const StrokeStrength& strength, float gain) {
  if (!pack_) return;
  TBCommand command = voicing().reweigh(voice.tag, voice.code, strength, gain);
  boost_.raise(command, voice.peaks, settings_.volume);
  send(command);
}

void VoicePlayer::release(uint16_t code, float relative, SplitMix64& rng) {
  if (!pack_) return;
  std::optional<TBCommand> command =
      voicing().release(nextTag(), mask_.soundOf(code), relative, {});
  if (!command) return;
  command->weights[0] *= static_cast<float>(1 + 0.05 * rng.signedUnit());
  raise(*command);
  send(*command);
}

VoiceBoost::Peaks VoicePlayer::raise(TBCommand& start) {
  const auto peaks = boost_.peaks(start);
  boost_.raise(start, peaks, settings_.volume);
  return peaks;
}

bool VoicePlayer::send(const TBCommand& command) {
  assert(command.tag != 0);
  return !audio_.isRunning() || tb_mixer_push(audio_.mixer(), &command);
}

}  // namespace tobrin
