#include "Engine/OfflineRenderer.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <memory>
#include <optional>
#include <stdexcept>

#include "Base/SplitMix64.h"
#include "Engine/AudioOutput.h"
#include "Engine/Voicing.h"
#include "Force/ForceClassifier.h"
#include "TobrinMixer.h"

namespace tobrin {
namespace {

constexpr std::size_t blockFrames = 64;
constexpr uint64_t jitterSeed = 42;
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

/// Turns scripted keys into commands; draws the variations, so keys must come in order.
class ScriptVoicer final {
 public:
  ScriptVoicer(const LoadedPack& pack, const EngineSettings& settings)
      : voicing_(pack, settings), releaseSounds_(settings.releaseSounds) {}

  /// Nothing where the key has no sound. The variation is drawn anyway.
  std::optional<TBCommand> command(const ScriptedKey& key) {
    const StrokeVariation variation = StrokeVariation::draw(rng_);
    const float relative = relativeStrength(key.position);
    if (key.action == KeyAction::down)
      return voicing_.press(++tag_, key.code, {key.position, relative}, variation);
    if (!releaseSounds_) return std::nullopt;
    return voicing_.release(++tag_, key.code, relative, variation);
  }

 private:
  Voicing voicing_;
  bool releaseSounds_;
  SplitMix64 rng_{jitterSeed};
  uint32_t tag_ = 0;
};

/// Frames of the whole render; 0 for lengths that are negative or NaN.
std::size_t lengthInFrames(double seconds, double sampleRate) {
  const double frames = std::floor(sampleRate * seconds);
  if (!(frames >= 1)) return 0;
  if (frames > 0x1p40) throw std::length_error("the script is too long");
  return static_cast<std::size_t>(frames);
}

// Room for a channel, as yet untouched: memory that is cleared block by block, right before the
// block is rendered, is still in the cache then.
std::vector<float> roomFor(std::size_t frames, MemoryHint hint) {
  std::vector<float> channel;
  channel.reserve(frames);
  if (hint != nullptr) hint(channel.data(), frames * sizeof(float));
  return channel;
}

}  // namespace

RenderedSound renderOffline(const LoadedPack& pack, std::vector<ScriptedKey> script,
                            const EngineSettings& settings, double tail, double sampleRate,
                            const RenderProgress& progress, MemoryHint hint) {
  assert(sampleRate > 0);
  assert(std::all_of(script.begin(), script.end(),
                     [](const ScriptedKey& key) { return std::isfinite(key.time); }));
  const Mixer mixer(
      tb_mixer_create(static_cast<float>(sampleRate), AudioOutput::crossfadeMilliseconds));
  if (!mixer) return {};
  tb_mixer_set_master(mixer.get(), settings.volume);
  std::stable_sort(script.begin(), script.end(),
                   [](const ScriptedKey& a, const ScriptedKey& b) { return a.time < b.time; });
  const double lastTime = script.empty() ? 0 : script.back().time;
  const std::size_t frames = lengthInFrames(tail + lastTime, sampleRate);
  RenderedSound sound{roomFor(frames, hint), roomFor(frames, hint)};

  ScriptVoicer voicer(pack, settings);
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
