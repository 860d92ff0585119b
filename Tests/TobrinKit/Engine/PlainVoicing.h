/// What a key must sound like, written down as plainly as possible: what the conductor and the
/// offline renderer are judged by. Thread: any.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "Base/SplitMix64.h"
#include "Engine/EngineSettings.h"
#include "Input/KeyLayout.h"
#include "Support/TestPack.h"
#include "TobrinMixer/ReferenceMixer.h"

namespace tobrin::testing {

/// Plays a pack in which every group, tier, take and release has another level and length.
class PlainVoicing final {
 public:
  static constexpr uint32_t crossfadeFrames = 192;  // 4 ms
  static constexpr uint32_t releaseFrames = 288;    // 6 ms

  explicit PlainVoicing(const EngineSettings& chosen) : settings(chosen) {}

  static std::shared_ptr<const LoadedPack> pack() {
    TestPack builder;
    for (const KeyGroup group : allKeyGroups) {
      for (std::size_t take = 0; take < releases(group); ++take)
        builder.up(group, level(group, 4, take), frames(group, 4, take));
      for (const Tier tier : allTiers)
        for (std::size_t take = 0; take < takes(group, index(tier)); ++take)
          builder.down(group, tier, level(group, index(tier), take),
                       frames(group, index(tier), take));
    }
    return builder.make();
  }

  void press(uint16_t code, double position, double relative, double gain = 1, double rate = 1) {
    TBCommand command = start(code, rate);
    const KeyGroup group = keyGroupOf(code);
    const std::array<double, tierCount> weights = weightsOf(position);
    for (std::size_t tier = 0; tier < tierCount; ++tier) {
      const std::size_t take = variant(code) % takes(group, tier);
      command.layers[tier] = sample(group, tier, take);
      command.weights[tier] = static_cast<float>(weights[tier] * edge(relative) * gain);
    }
    mixer.push(command);
  }

  void release(uint16_t code, double relative, double gain = 1, double rate = 1) {
    TBCommand command = start(code, rate);
    const KeyGroup group = keyGroupOf(code);
    command.layers[0] = sample(group, 4, variant(code) % releases(group));
    command.weights[0] = static_cast<float>(std::clamp(std::sqrt(relative), 0.5, 1.3) * 0.8 * gain);
    mixer.push(command);
  }

  /// Renders what the pushed keys sound like and compares it, up to the first difference.
  void expectSound(const std::vector<float>& left, const std::vector<float>& right) {
    ASSERT_EQ(left.size(), right.size());
    std::vector<double> expectedLeft(left.size()), expectedRight(left.size());
    mixer.render(expectedLeft.data(), expectedRight.data(), static_cast<uint32_t>(left.size()));
    for (std::size_t i = 0; i < left.size(); ++i) {
      ASSERT_NEAR(static_cast<double>(left[i]), expectedLeft[i], 2e-4) << "left, frame " << i;
      ASSERT_NEAR(static_cast<double>(right[i]), expectedRight[i], 2e-4) << "right, frame " << i;
    }
  }

  const EngineSettings settings;
  ReferenceMixer mixer{crossfadeFrames, releaseFrames};

 private:
  static std::size_t takes(KeyGroup group, std::size_t tier) {
    return 1 + (index(group) + 2 * tier) % 5;
  }
  static std::size_t releases(KeyGroup group) { return 4 - index(group) % 3; }
  static std::size_t place(KeyGroup group, std::size_t tier, std::size_t take) {
    return (index(group) * 5 + tier) * 5 + take;
  }
  static float level(KeyGroup group, std::size_t tier, std::size_t take) {
    return 0.1f + 0.003f * static_cast<float>(place(group, tier, take));
  }
  static std::size_t frames(KeyGroup group, std::size_t tier, std::size_t take) {
    return 2000 - 13 * place(group, tier, take);
  }
  TBSample sample(KeyGroup group, std::size_t tier, std::size_t take) {
    auto& sound = sounds_[place(group, tier, take)];
    sound.assign(frames(group, tier, take), level(group, tier, take));
    return {
        .left = sound.data(), .right = sound.data(), .frames = static_cast<uint32_t>(sound.size())};
  }

  static uint64_t hash(uint16_t code) { return SplitMix64(code).next(); }
  static std::size_t variant(uint16_t code) {
    std::size_t most = 1;
    for (std::size_t tier = 0; tier < tierCount; ++tier)
      most = std::max(most, takes(keyGroupOf(code), tier));
    return hash(code) % most;
  }
  TBCommand start(uint16_t code, double rate) {
    TBCommand command{};
    command.type = TB_COMMAND_START;
    command.tag = ++tag_;
    const double side = (keyColumn(code).value_or(7.5) / 15 - 0.5) * 2;
    command.pan = static_cast<float>(side * static_cast<double>(settings.spatial) * 0.6);
    const double steps = static_cast<double>((hash(code) >> 24) % 2001) - 1000;
    command.rate = static_cast<float>(rate * (1 + 0.012 * steps / 1000));
    return command;
  }

  [[nodiscard]] std::array<double, tierCount> weightsOf(double position) const {
    std::array<double, tierCount> weights{};
    position = std::clamp(position, 0.0, 3.0);
    const auto below = static_cast<std::size_t>(position);
    const double part = position - static_cast<double>(below);
    if (!settings.blendTiers) {
      weights[static_cast<std::size_t>(std::lround(position))] = 1;
    } else {
      weights[below] = std::cos(part * std::numbers::pi / 2);
      if (below < 3) weights[below + 1] = std::sin(part * std::numbers::pi / 2);
    }
    return weights;
  }
  static double edge(double relative) {
    if (relative < 0.4) return std::max(std::sqrt(relative / 0.4), 0.45);
    return relative > 4 ? std::min(std::pow(relative / 4, 0.25), 1.25) : 1;
  }

  std::array<std::vector<float>, 125> sounds_;  // by place; played by the mixer
  uint32_t tag_ = 0;
};

}  // namespace tobrin::testing
