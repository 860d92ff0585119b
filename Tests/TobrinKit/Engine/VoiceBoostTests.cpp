#include "Engine/VoiceBoost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Engine/Conductor.h"
#include "Engine/TypingScript.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackLoader.h"
#include "Support/HandDrivenDevice.h"
#include "Support/TempFolder.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

using Sound = std::vector<float>;

/// What is typed fast, live. The mixer's sum is divided by `lowered`, so that nothing is limited.
Sound typed(const std::shared_ptr<const LoadedPack>& pack, Tier strength, float boost,
            float lowered = 1) {
  const auto device = std::make_shared<testing::HandDrivenDevice::Controls>();
  auto output = std::make_unique<AudioOutput>(std::make_unique<testing::HandDrivenDevice>(device));
  AudioOutput& audio = *output;
  VirtualQueue queue(Conductor::queueName, machTicks(1e6));
  Conductor conductor(queue, std::move(output), nullptr);
  conductor.setPack(pack);
  conductor.setBoost(boost);
  conductor.apply({.volume = 1, .forceSensing = false, .fixedTier = strength}, true);
  queue.runUntil(queue.now());
  audio.setVolume(1 / lowered);
  device->render(64);  // until the master is there
  Sound heard;
  constexpr double wordsAMinute = 160;
  const auto noForce = [](std::size_t, std::size_t) { return 0.0F; };
  for (const ScriptedKey& key :
       typingScript("The quick brown fox jumps", wordsAMinute, 3, noForce)) {
    while (static_cast<double>(heard.size()) < key.time * 2 * 48000) {
      const auto [left, right] = device->render(64);
      heard.insert(heard.end(), left.begin(), left.end());
      heard.insert(heard.end(), right.begin(), right.end());
    }
    conductor.handle({key.code, key.action, queue.now()});
    queue.runUntil(queue.now());
  }
  for (float& sample : heard) sample *= lowered;
  return heard;
}

double decibels(const Sound& sound) {
  const double energy = std::inner_product(sound.begin(), sound.end(), sound.begin(), 1e-9);
  return 10 * std::log10(energy);
}

// Some 30 dB below a click, what the limiter adds to it is not heard. Without bounds it would be
// 14 dB below the hardest strokes.
TEST(VoiceBoost, MakesQuietKeysTwiceAsLoudAndDistortsNone) {
  const testing::TempFolder folder;
  for (const SynthProfile* profile : {&SynthProfile::click(), &SynthProfile::dome()}) {
    generatePack(*profile, folder.path());
  }
  for (const PackInfo& info : discoverPacks(folder.path(), false)) {
    const auto pack = loadPack(info, 48000);
    for (const auto& [strength, gain] : {std::pair(Tier::soft, 5.9), std::pair(Tier::medium, 5.5),
                                         std::pair(Tier::hard, 3.0), std::pair(Tier::slam, 0.0)}) {
      SCOPED_TRACE(info.id + " " + std::to_string(index(strength)));
      const Sound heard = typed(pack, strength, 2);
      Sound added = typed(pack, strength, 2, 64);
      EXPECT_GE(decibels(heard) - decibels(typed(pack, strength, 1)), gain);
      std::ranges::transform(heard, added, added.begin(), std::minus());
      EXPECT_LE(decibels(added) - decibels(heard), -30);
    }
  }
}

}  // namespace
}  // namespace tobrin
