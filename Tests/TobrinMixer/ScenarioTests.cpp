// Random scenarios through the kernels of every instruction set, beside the reference.
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cmath>
#include <cstring>
#include <random>

#include "MixerFixture.h"
#include "ReferenceMixer.h"

namespace tobrin {
namespace {

/// A pool of sounds and the commands drawn from it.
class Scenario {
 public:
  explicit Scenario(uint32_t seed) : generator_(seed), wideRates_(seed % 3 == 0) {
    for (std::vector<float>& sound : sounds_) {
      sound.resize(static_cast<std::size_t>(between(1, seed % 4 == 0 ? 40 : 4000)));
      for (float& sample : sound)
        sample = uniform(-0.2F, 0.2F);
    }
  }

  [[nodiscard]] int between(int low, int high) {
    return std::uniform_int_distribution(low, high)(generator_);
  }
  float uniform(float low, float high) {
    return std::uniform_real_distribution(low, high)(generator_);
  }

  TBCommand command() {
    TBCommand command{};
    const int kind = between(0, 99);
    command.type = kind < 60 ? 1U : kind < 95 ? 2U : kind < 98 ? 3U : 17U;  // the last is unknown
    command.tag = static_cast<uint32_t>(between(1, 40));
    const bool mono = between(0, 2) == 0;
    for (std::size_t n = 0; n < TB_LAYERS; ++n) {
      command.weights[n] = between(0, 2) == 0 ? 0 : uniform(0, 1.2F);
      if (between(0, 3) > 0) command.layers[n] = layer(mono);
    }
    command.pan = uniform(-1.3F, 1.3F);
    command.rate = rate();
    return command;
  }

 private:
  TBSample layer(bool mono) {
    const auto& left = sounds_[static_cast<std::size_t>(between(0, 7))];
    const auto& right = sounds_[static_cast<std::size_t>(between(0, 7))];
    const bool plain = mono || between(0, 4) == 0;
    const auto frames = plain ? left.size() : std::min(left.size(), right.size());
    return {left.data(), plain ? nullptr : right.data(), static_cast<uint32_t>(frames)};
  }

  float rate() {
    const int kind = between(0, 9);
    if (kind == 0) return 1;
    if (kind == 1) return kind == between(0, 1) ? 0.25F : 4.0F;
    return wideRates_ ? uniform(0.2F, 4.1F) : uniform(0.9F, 1.13F);
  }

  std::mt19937 generator_;
  bool wideRates_;
  std::array<std::vector<float>, 8> sounds_;
};

/// Renders a scenario with the kernels chosen now. Returns everything that was put out, and checks
/// it against the reference.
std::vector<float> play(uint32_t seed) {
  Scenario scenario(seed);
  const MixerHandle mixer = makeMixer();
  ReferenceMixer reference(192, 288);
  std::vector<float> output;
  double master = 1;
  for (int block = 0; block < 60; ++block) {
    for (int n = scenario.between(0, 4); n > 0; --n) {
      const TBCommand command = scenario.command();
      EXPECT_TRUE(tb_mixer_push(mixer.get(), &command));
      reference.push(command);
    }
    const bool slides = scenario.between(0, 9) == 0;
    if (slides) master = static_cast<double>(scenario.uniform(0, 1.5F));
    tb_mixer_set_master(mixer.get(), static_cast<float>(master));
    reference.setMaster(static_cast<double>(tb_mixer_get_master(mixer.get())));
    static constexpr int sizes[] = {256, 64, 480, 0, 1, 1000};
    const int size = scenario.between(0, 9);
    const auto frames = static_cast<uint32_t>(size < 6 ? sizes[size] : scenario.between(1, 700));
    const bool mono = scenario.between(0, 4) == 0;
    Block actual{std::vector<float>(frames), std::vector<float>(frames)};
    std::vector<double> left(frames), right(frames);
    tb_mixer_render(mixer.get(), actual.left.data(), mono ? nullptr : actual.right.data(), frames);
    reference.render(left.data(), mono ? nullptr : right.data(), frames);
    double worst = 1e-12;  // nothing has no logarithm
    for (uint32_t i = 0; i < frames; ++i) {
      worst = std::max(worst, std::abs(static_cast<double>(actual.left[i]) - left[i]));
      worst = std::max(worst, std::abs(static_cast<double>(actual.right[i]) - right[i]));
    }
    EXPECT_LT(20 * std::log10(worst), slides ? -115 : -120) << "block " << block;
    EXPECT_EQ(tb_mixer_active_voices(mixer.get()), reference.activeVoices) << "block " << block;
    EXPECT_EQ(tb_mixer_started_voices(mixer.get()), reference.startedVoices) << "block " << block;
    output.insert(output.end(), actual.left.begin(), actual.left.end());
    output.insert(output.end(), actual.right.begin(), actual.right.end());
  }
  return output;
}

class EveryInstructionSet : public testing::Test {
 protected:
  void TearDown() override { hwy::SetSupportedTargetsForTest(0); }
};

TEST_F(EveryInstructionSet, GivesTheSameBitsCloseToTheReference) {
  const std::vector<int64_t> targets = hwy::SupportedAndGeneratedTargets();
  for (uint32_t seed = 0; seed < 60; ++seed) {
    std::vector<float> first;
    for (const int64_t target : targets) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << " on " << hwy::TargetName(target));
      hwy::SetSupportedTargetsForTest(target);
      const std::vector<float> output = play(seed);
      if (first.empty()) first = output;
      ASSERT_EQ(output.size(), first.size());
      EXPECT_EQ(std::memcmp(output.data(), first.data(), output.size() * sizeof(float)), 0);
    }
  }
}

}  // namespace
}  // namespace tobrin
