// Pushes and renders in any order: counters add up, output stays finite and below 1, the samples'
// memory and the blocks' are kept to.
#include <algorithm>
#include <bit>
#include <cmath>
#include <memory>
#include <vector>

#include "FuzzInput.h"
#include "TobrinMixer.h"

namespace {

using tobrin::fuzz::Input;
using tobrin::fuzz::require;

/// Sounds of their exact size, so that a read past the end shows.
std::vector<std::vector<float>> makeSounds() {
  std::vector<std::vector<float>> sounds;
  for (const std::size_t frames : {0U, 1U, 2U, 17U, 100U, 513U, 2000U, 9000U}) {
    auto& sound = sounds.emplace_back(frames);
    for (std::size_t i = 0; i < frames; ++i)
      sound[i] = i % 5 < 3 ? 0.7F : -0.9F;
  }
  return sounds;
}

TBSample layer(Input& input) {
  static const auto sounds = makeSounds();
  const uint32_t first = input.take<uint8_t>() % 8;
  const uint32_t second = input.take<uint8_t>() % 16;
  if (first == 7) return {};
  const auto& left = sounds[first];
  if (second >= 8) return {left.data(), nullptr, static_cast<uint32_t>(left.size())};
  const auto& right = sounds[second];
  return {left.data(), right.data(), static_cast<uint32_t>(std::min(left.size(), right.size()))};
}

// Mostly a plain value, now and then any bits at all.
float value(Input& input, float low, float high) {
  const auto byte = input.take<uint8_t>();
  if (byte == 255) return std::bit_cast<float>(input.take<uint32_t>());
  return low + (high - low) * static_cast<float>(byte) / 254;
}

TBCommand command(Input& input) {
  TBCommand command{};
  command.type = input.take<uint8_t>() % 5;
  command.tag = input.take<uint8_t>() % 40 + 1U;
  for (std::size_t n = 0; n < TB_LAYERS; ++n) {
    if (command.type == TB_COMMAND_START) command.layers[n] = layer(input);
    command.weights[n] = value(input, 0, 1.5F);
  }
  command.pan = value(input, -1.2F, 1.2F);
  command.rate = value(input, 0.2F, 4.2F);
  return command;
}

struct Tally {
  uint64_t pushed = 0, dropped = 0, frames = 0;
};

void render(TBMixer* mixer, Input& input, Tally& tally) {
  const uint32_t frames = input.take<uint16_t>() % 1200;
  const auto mode = input.take<uint8_t>();
  const auto left = std::make_unique<float[]>(frames);
  const auto right = std::make_unique<float[]>(frames);
  float* second = mode % 4 == 0 ? nullptr : mode % 4 == 1 ? left.get() : right.get();
  tb_mixer_render(mixer, left.get(), second, frames);
  tally.frames += frames;
  for (uint32_t i = 0; i < frames; ++i)
    require(std::abs(left[i]) < 1 && std::abs(right[i]) < 1);
  require(tb_mixer_rendered_frames(mixer) == tally.frames);
  require(tb_mixer_active_voices(mixer) <= TB_VOICES);
  require(tb_mixer_started_voices(mixer) <= tally.pushed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  Input input(data, size);
  const float sampleRate = value(input, 8000, 192000);
  const std::unique_ptr<TBMixer, decltype(&tb_mixer_destroy)> mixer(
      tb_mixer_create(sampleRate, value(input, 0, 20)), &tb_mixer_destroy);
  Tally tally;
  uint32_t waiting = 0;
  while (!input.empty()) {
    const auto action = input.take<uint8_t>();
    if (action % 8 == 0) {
      render(mixer.get(), input, tally);
      waiting = 0;
    } else if (action % 8 == 1) {
      tb_mixer_set_master(mixer.get(), value(input, -0.5F, 5));
    } else {
      const TBCommand next = command(input);
      for (uint32_t n = action == 255 ? 300 : 1; n > 0; --n) {
        const bool fits = waiting < TB_RING_CAPACITY;
        require(tb_mixer_push(mixer.get(), &next) == fits);
        ++(fits ? tally.pushed : tally.dropped);
        waiting += fits ? 1 : 0;
      }
    }
    require(tb_mixer_dropped_commands(mixer.get()) == tally.dropped);
  }
  return 0;
}
