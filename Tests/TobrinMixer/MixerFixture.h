#pragma once

#include <memory>
#include <vector>

#include "TobrinMixer.h"

namespace tobrin {

using MixerHandle = std::unique_ptr<TBMixer, decltype(&tb_mixer_destroy)>;

inline MixerHandle makeMixer(float sampleRate = 48000, float crossfadeMs = 4) {
  return {tb_mixer_create(sampleRate, crossfadeMs), &tb_mixer_destroy};
}

inline TBCommand startOf(const std::vector<float>& sound, uint32_t tag = 1, float weight = 1) {
  TBCommand command{};
  command.type = TB_COMMAND_START;
  command.tag = tag;
  command.layers[0] = {sound.data(), nullptr, static_cast<uint32_t>(sound.size())};
  command.weights[0] = weight;
  command.rate = 1;
  return command;
}

inline TBCommand commandOf(uint32_t type, uint32_t tag = 0, float weight = 0) {
  TBCommand command{};
  command.type = type;
  command.tag = tag;
  command.weights[0] = weight;
  return command;
}

struct Block {
  std::vector<float> left, right;
};

inline Block renderBlock(TBMixer* mixer, uint32_t frames) {
  Block block{std::vector<float>(frames, 7), std::vector<float>(frames, 7)};
  tb_mixer_render(mixer, block.left.data(), block.right.data(), frames);
  return block;
}

}  // namespace tobrin
