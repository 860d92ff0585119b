#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "TobrinMixer.h"

namespace tobrin {

/// The mixer's sound in double precision, one frame after the other: what the real one is judged
/// by.
class ReferenceMixer final {
 public:
  ReferenceMixer(uint32_t fadeFrames, uint32_t releaseFrames)
      : fadeFrames_(fadeFrames), releaseFrames_(releaseFrames) {}

  void push(const TBCommand& command) { commands_.push_back(command); }
  void setMaster(double gain) { masterTarget_ = gain; }
  /// Mono when `right` is null.
  void render(double* left, double* right, uint32_t frames) {
    for (const TBCommand& command : commands_)
      apply(command);
    commands_.clear();
    for (double* channel : {left, right}) {
      if (channel != nullptr) std::fill_n(channel, frames, 0.0);
    }
    for (Voice& voice : voices_) {
      if (voice.active) mix(voice, left, right, frames);
    }
    for (uint32_t i = 0; i < frames; ++i) {
      const double gain = masterCurrent_ + (masterTarget_ - masterCurrent_) * (i + 1) / frames;
      for (double* channel : {left, right}) {
        if (channel != nullptr) channel[i] = softLimited(gain * channel[i]);
      }
    }
    masterCurrent_ = masterTarget_;
    activeVoices = static_cast<uint32_t>(std::ranges::count(voices_, true, &Voice::active));
  }

  uint32_t activeVoices = 0;
  uint64_t startedVoices = 0;

 private:
  struct Voice {
    bool active = false;
    bool releasing = false;
    uint32_t tag = 0;
    uint64_t sequence = 0;
    std::array<TBSample, TB_LAYERS> layers{};
    std::array<double, TB_LAYERS> gain{}, target{}, step{};
    uint32_t rampLeft = 0;
    uint32_t length = 0;
    double position = 0;
    double rate = 1;
    double panLeft = 1;
    double panRight = 1;
  };

  static double sampleAt(const float* samples, uint32_t frames, double position) {
    const auto k = static_cast<uint32_t>(position);
    const auto at = [&](uint32_t index) {
      return index < frames ? static_cast<double>(samples[index]) : 0.0;
    };
    return at(k) + (position - k) * (at(k + 1) - at(k));
  }

  static double softLimited(double sample) {
    const double over = (std::abs(sample) - 0.8) / 0.2;
    return over <= 0 ? sample : std::copysign(0.8 + 0.2 * over / (over + 1), sample);
  }

  void start(const TBCommand& command) {
    Voice fresh;
    fresh.active = true;
    fresh.tag = command.tag;
    fresh.layers = std::to_array(command.layers);
    for (std::size_t n = 0; n < TB_LAYERS; ++n) {
      TBSample& layer = fresh.layers[n];
      if (layer.left == nullptr) continue;
      if (layer.right == nullptr) layer.right = layer.left;
      fresh.length = std::max(fresh.length, layer.frames);
      fresh.gain[n] = fresh.target[n] = static_cast<double>(command.weights[n]);
    }
    if (fresh.length == 0) return;
    if (command.rate > 0.25F && command.rate < 4) fresh.rate = static_cast<double>(command.rate);
    const double pan = std::clamp(static_cast<double>(command.pan), -1.0, 1.0);
    fresh.panLeft = std::cos((pan + 1) * std::numbers::pi / 4) * std::numbers::sqrt2;
    fresh.panRight = std::sin((pan + 1) * std::numbers::pi / 4) * std::numbers::sqrt2;
    fresh.sequence = ++sequence_;
    auto slot = std::ranges::find(voices_, false, &Voice::active);
    if (slot == voices_.end()) slot = std::ranges::min_element(voices_, {}, &Voice::sequence);
    *slot = fresh;
    ++startedVoices;
  }

  static void ramp(Voice& voice, const float* weights, uint32_t frames) {
    for (std::size_t n = 0; n < TB_LAYERS; ++n) {
      const bool sounds = weights != nullptr && voice.layers[n].left != nullptr;
      voice.target[n] = sounds ? static_cast<double>(weights[n]) : 0.0;
      voice.step[n] = (voice.target[n] - voice.gain[n]) / frames;
    }
    voice.rampLeft = frames;
  }

  void apply(const TBCommand& command) {
    if (command.type == TB_COMMAND_START) start(command);
    if (command.type == TB_COMMAND_SET_WEIGHTS) {
      const auto voice = std::ranges::find_if(voices_, [&](const Voice& v) {
        return v.active && !v.releasing && v.tag == command.tag;
      });
      if (voice != voices_.end()) ramp(*voice, command.weights, fadeFrames_);
    }
    if (command.type != TB_COMMAND_RELEASE_ALL) return;
    for (Voice& voice : voices_) {
      if (!voice.active) continue;
      voice.releasing = true;
      ramp(voice, nullptr, releaseFrames_);
    }
  }

  static void mix(Voice& voice, double* left, double* right, uint32_t frames) {
    for (uint32_t i = 0; i < frames; ++i) {
      if (voice.position >= voice.length) {
        voice.active = false;
        return;
      }
      double mixLeft = 0;
      double mixRight = 0;
      for (std::size_t n = 0; n < TB_LAYERS; ++n) {
        const TBSample& layer = voice.layers[n];
        if (layer.left == nullptr) continue;
        mixLeft += voice.gain[n] * sampleAt(layer.left, layer.frames, voice.position);
        mixRight += voice.gain[n] * sampleAt(layer.right, layer.frames, voice.position);
      }
      if (voice.rampLeft > 0) {
        --voice.rampLeft;
        for (std::size_t n = 0; n < TB_LAYERS; ++n)
          voice.gain[n] = voice.rampLeft > 0 ? voice.gain[n] + voice.step[n] : voice.target[n];
        if (voice.rampLeft == 0 && voice.releasing) {
          voice.active = false;
          return;
        }
      }
      left[i] += (right == nullptr ? 0.5 : 1.0) * mixLeft * voice.panLeft;
      (right == nullptr ? left : right)[i] +=
          (right == nullptr ? 0.5 : 1.0) * mixRight * voice.panRight;
      voice.position += voice.rate;
    }
  }

  std::vector<TBCommand> commands_;
  std::array<Voice, TB_VOICES> voices_;
  uint64_t sequence_ = 0;
  uint32_t fadeFrames_;
  uint32_t releaseFrames_;
  double masterTarget_ = 1;
  double masterCurrent_ = 1;
};

}  // namespace tobrin
