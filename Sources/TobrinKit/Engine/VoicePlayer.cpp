#include "Engine/VoicePlayer.h"

#include <cassert>
#include <utility>

namespace tobrin {

std::shared_ptr<const LoadedPack> VoicePlayer::exchangePack(
    std::shared_ptr<const LoadedPack> pack) {
  return std::exchange(pack_, std::move(pack));
}

uint32_t VoicePlayer::nextTag() {
  if (++lastTag_ == 0) lastTag_ = 1;  // 0 names no voice
  return lastTag_;
}

uint32_t VoicePlayer::press(uint16_t code, const StrokeStrength& strength,
                            const StrokeVariation& variation) {
  if (!pack_) return 0;
  const auto command = voicing().press(nextTag(), code, strength, variation);
  return command && send(*command) ? command->tag : 0;
}

void VoicePlayer::reweigh(uint32_t tag, uint16_t code, const StrokeStrength& strength, float gain) {
  if (pack_) send(voicing().reweigh(tag, code, strength, gain));
}

void VoicePlayer::release(uint16_t code, float relative, SplitMix64& rng) {
  if (!pack_) return;
  std::optional<TBCommand> command = voicing().release(nextTag(), code, relative, {});
  if (!command) return;
  command->weights[0] *= static_cast<float>(1 + 0.05 * rng.signedUnit());
  send(*command);
}

bool VoicePlayer::send(const TBCommand& command) {
  assert(command.tag != 0);
  return !audio_.isRunning() || tb_mixer_push(audio_.mixer(), &command);
}

}  // namespace tobrin
