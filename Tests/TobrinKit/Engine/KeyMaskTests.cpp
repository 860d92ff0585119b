#include "Engine/KeyMask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Engine/Conductor.h"
#include "Input/KeyLayout.h"
#include "Packs/PackLoader.h"
#include "Support/HandDrivenDevice.h"
#include "Support/TempFolder.h"
#include "Support/TestPack.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

constexpr std::size_t keyCount = 30;
constexpr std::size_t heardFrames = 2000;

/// Hears strokes and says of later ones which key they were: that of the stroke most like it, in
/// form and in place.
class Eavesdropper final {
 public:
  using Channels = std::pair<std::vector<float>, std::vector<float>>;

  void learn(std::size_t key, Channels sound) { known_.emplace_back(key, Heard(std::move(sound))); }

  [[nodiscard]] std::size_t guess(Channels sound) const {
    const Heard heard(std::move(sound));
    return std::ranges::max_element(known_, {},
                                    [&](const auto& known) { return heard.likeness(known.second); })
        ->first;
  }

 private:
  struct Heard {
    explicit Heard(Channels sound) : form(std::move(sound.first)) {
      const float left = dot(form, form);
      const float right = dot(sound.second, sound.second);
      place = std::log(left / right);
      for (float& sample : form)
        sample /= std::sqrt(left);
    }
    [[nodiscard]] float likeness(const Heard& other) const {
      return dot(form, other.form) - 4 * std::abs(place - other.place);
    }
    static float dot(const std::vector<float>& one, const std::vector<float>& other) {
      return std::inner_product(one.begin(), one.end(), other.begin(), 0.0F);
    }
    std::vector<float> form;
    float place;
  };
  std::vector<std::pair<std::size_t, Heard>> known_;
};

class KeyMaskTest : public ::testing::Test {
 protected:
  KeyMaskTest() {
    const auto folder = generatePack(SynthProfile::cream(), folder_.path());
    conductor_.setPack(loadPack(PackInfo::read(folder, false), 48000));
    EngineSettings settings;
    settings.forceSensing = false;
    conductor_.apply(settings, true);
    queue_.runUntil(queue_.now());
    for (uint16_t code = 0; keys_.size() < keyCount; ++code) {
      if (keyColumn(code) && keyGroupOf(code) == KeyGroup::alpha) keys_.push_back(code);
    }
  }

  Eavesdropper::Channels strike(std::size_t key) {
    queue_.runUntil(queue_.now() + machTicks(300));
    conductor_.handle({keys_[key], KeyAction::down, queue_.now()});
    queue_.runUntil(queue_.now());
    auto heard = device_->render(heardFrames);
    device_->render(24000);  // until it has died away
    return heard;
  }

  /// The share of strokes that somebody who knows 10 of each key tells right.
  double toldRight(std::size_t rounds) {
    Eavesdropper eavesdropper;
    for (std::size_t stroke = 0; stroke < 10 * keyCount; ++stroke)
      eavesdropper.learn(stroke % keyCount, strike(stroke % keyCount));
    std::size_t right = 0;
    for (std::size_t stroke = 0; stroke < rounds * keyCount; ++stroke)
      right += eavesdropper.guess(strike(stroke % keyCount)) == stroke % keyCount ? 1U : 0U;
    return static_cast<double>(right) / static_cast<double>(rounds * keyCount);
  }

  testing::TempFolder folder_;
  std::vector<uint16_t> keys_;
  std::shared_ptr<testing::HandDrivenDevice::Controls> device_ =
      std::make_shared<testing::HandDrivenDevice::Controls>();
  VirtualQueue queue_{Conductor::queueName, machTicks(1e6)};
  Conductor conductor_{
      queue_, std::make_unique<AudioOutput>(std::make_unique<testing::HandDrivenDevice>(device_)),
      nullptr};
};

TEST_F(KeyMaskTest, SoundsNoLongerTellTheKey) {
  EXPECT_GE(toldRight(5), 0.95) << "each key has a sound and a place";
  conductor_.setMasked(true);
  EXPECT_NEAR(toldRight(30), 1.0 / keyCount, 0.03) << "chance";
  conductor_.setMasked(false);
  EXPECT_GE(toldRight(2), 0.95);
}

TEST(KeyMask, StaysInTheGroupAndTakesNoSilentKey) {
  KeyMask mask(1);
  const auto pack = testing::TestPack()
                        .down(KeyGroup::alpha, Tier::medium, 0.1F)
                        .key(0, {std::vector<uint32_t>{}, {}})
                        .make();
  mask.setPack(*pack);
  EXPECT_EQ(mask.soundOf(7), 7);
  mask.setOn(true);
  for (uint16_t round = 0; round < 5000; ++round) {
    const auto code = static_cast<uint16_t>(round % 128);
    const uint16_t sound = mask.soundOf(code);
    ASSERT_EQ(keyGroupOf(sound), keyGroupOf(code));
    ASSERT_NE(sound, 0) << "the pack keeps it silent";
  }
}

}  // namespace
}  // namespace tobrin
