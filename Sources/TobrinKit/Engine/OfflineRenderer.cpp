#include "Engine/OfflineRenderer.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <memory>
#include <optional>
#include <stdexcept>

#include "Base/SplitMix64.h"
#include "Engine/Voicing.h"
#include "Force/ForceClassifier.h"
#include "Input/KeyLayout.h"
#include "TobrinMixer.h"

namespace tobrin {
namespace {

constexpr std::size_t blockFrames = 64;
constexpr float crossfadeMs = 4;
constexpr uint64_t jitterSeed = 42;
constexpr float releaseLevel = 0.8f;              // releases are quieter than presses
constexpr std::size_t framesPerNotice = 1 << 20;  // of progress; divisible by the block

struct MixerDeleter {
  void operator()(TBMixer* mixer) const { tb_mixer_destroy(mixer); }
};
using Mixer = std::unique_ptr<TBMixer, MixerDeleter>;

/// Relative to a typical stroke; that of the nearest tier's centre.
float relativeStrength(float position) {
  const float nearest = std::round(position);
  const auto& centers = ForceClassifier::tierCenters;
  if (!(nearest > 0)) return centers.front();
  return centers[static_cast<std::size_t>(std::min(nearest, 3.0f))];
}

/// Turns scripted keys into commands; draws the jitter, so keys must come in order.
class Voicer final {
 public:
  Voicer(const LoadedPack& pack, const EngineSettings& settings)
      : pack_(pack), settings_(settings) {}

  /// Nothing where the key has no sound. The jitter is drawn all the same.
  std::optional<TBCommand> command(const ScriptedKey& key) {
    const Voicing::Variation variation = draw();
    const KeyGroup group = KeyLayout::group(key.code);
    const std::size_t variant = Voicing::variant(key.code, pack_, group);
    TBCommand command{};
    command.type = TB_COMMAND_START;
    command.tag = ++tag_;
    command.pan = Voicing::pan(key.code, settings_);
    command.rate = variation.rate * Voicing::detune(key.code);
    if (key.action == KeyAction::down)
      press(command, key.position, variation.gain, pack_.layers(group, variant));
    else if (!release(command, key.position, variation.gain, pack_.release(group, variant)))
      return std::nullopt;
    return command;
  }

 private:
  Voicing::Variation draw() {
    const double gain = 1 + 0.06 * rng_.signedUnit();
    const double rate = 1 + 0.004 * rng_.signedUnit();
    return {static_cast<float>(gain), static_cast<float>(rate)};
  }

  void press(TBCommand& command, float position, float gain, const LoadedPack::Layers& layers) {
    Voicing::setLayers(command, layers.samples);
    Voicing::setWeights(command, Voicing::weights(position, relativeStrength(position),
                                                  layers.gains, settings_.blendTiers, gain));
  }

  bool release(TBCommand& command, float position, float gain,
               const std::optional<LoadedPack::Take>& take) {
    if (!settings_.releaseSounds || !take) return false;
    const float strength = Voicing::releaseGain(relativeStrength(position));
    command.layers[0] = take->sample;
    command.weights[0] = gain * strength * take->gain * releaseLevel;
    return true;
  }

  const LoadedPack& pack_;
  const EngineSettings& settings_;
  SplitMix64 rng_{jitterSeed};
  uint32_t tag_ = 0;
};

/// Frames of the whole render; 0 for lengths that are negative or no number.
std::size_t lengthInFrames(double seconds, double sampleRate) {
  const double frames = std::floor(sampleRate * seconds);
  if (!(frames >= 1)) return 0;
  if (frames > 0x1p40) throw std::length_error("the script is too long");
  return static_cast<std::size_t>(frames);
}

// Room for a channel, as yet untouched: memory that is cleared block by block, right before the
// block is rendered, is still in the cache then.
std::vector<float> roomFor(std::size_t frames, OfflineRenderer::MemoryHint hint) {
  std::vector<float> channel;
  channel.reserve(frames);
  if (hint != nullptr) hint(channel.data(), frames * sizeof(float));
  return channel;
}

}  // namespace

OfflineRenderer::Sound OfflineRenderer::render(const LoadedPack& pack,
                                               std::vector<ScriptedKey> script,
                                               const EngineSettings& settings, double tail,
                                               double sampleRate, const Progress& progress,
                                               MemoryHint hint) {
  assert(std::all_of(script.begin(), script.end(),
                     [](const ScriptedKey& key) { return std::isfinite(key.time); }));
  const Mixer mixer(tb_mixer_create(static_cast<float>(sampleRate), crossfadeMs));
  if (!mixer) return {};
  tb_mixer_set_master(mixer.get(), settings.volume);
  std::stable_sort(script.begin(), script.end(),
                   [](const ScriptedKey& a, const ScriptedKey& b) { return a.time < b.time; });
  const double lastTime = script.empty() ? 0 : script.back().time;
  const std::size_t frames = lengthInFrames(tail + lastTime, sampleRate);
  Sound sound{roomFor(frames, hint), roomFor(frames, hint)};

  Voicer voicer(pack, settings);
  auto next = script.cbegin();
  for (std::size_t start = 0; start < frames; start += blockFrames) {
    const std::size_t end = std::min(start + blockFrames, frames);
    for (; next != script.cend() && std::floor(sampleRate * next->time) < static_cast<double>(end);
         ++next)
      if (const auto command = voicer.command(*next)) tb_mixer_push(mixer.get(), &*command);
    sound.left.resize(end);
    sound.right.resize(end);
    tb_mixer_render(mixer.get(), &sound.left[start], &sound.right[start],
                    static_cast<uint32_t>(end - start));
    if (progress && end % framesPerNotice == 0)
      progress(static_cast<double>(end) / static_cast<double>(frames));
  }
  return sound;
}

}  // namespace tobrin
