#include "TobrinMixer.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cmath>
#include <new>

#include "BlockRenderer.h"
#include "CommandRing.h"

using tobrin::BlockRenderer;
using tobrin::CommandRing;
using tobrin::OutputChannels;

static_assert(std::atomic<float>::is_always_lock_free);
static_assert(std::atomic<uint64_t>::is_always_lock_free);

struct TBMixer {
  TBMixer(uint32_t fadeFrames, uint32_t releaseFrames) noexcept
      : renderer(fadeFrames, releaseFrames) {}

  CommandRing ring;

  // Any thread. None of these orders other memory, so every access is relaxed.
  std::atomic<float> masterTarget{1.0F};
  std::atomic<uint32_t> activeVoices{0};
  std::atomic<uint64_t> startedVoices{0};
  std::atomic<uint64_t> renderedFrames{0};
  std::atomic<uint64_t> droppedCommands{0};

  BlockRenderer renderer;  ///< render thread
};

namespace {

constexpr float defaultSampleRate = 48000;
constexpr float defaultCrossfadeMs = 4;
constexpr float releaseMs = 6;
constexpr float loudestMaster = 4;

uint32_t framesOf(float milliseconds, float sampleRate) {
  const double frames =
      std::round(static_cast<double>(milliseconds) * static_cast<double>(sampleRate) / 1000.0);
  return static_cast<uint32_t>(std::clamp(frames, 1.0, 2147483647.0));
}

// Only the render thread writes what it counts, which spares it a locked addition.
void count(std::atomic<uint64_t>& counter, uint64_t more) noexcept {
  counter.store(counter.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
}

void applyCommands(TBMixer& mixer) noexcept {
  mixer.ring.drain(
      [&mixer](const TBCommand& command) {
        if (mixer.renderer.apply(command)) count(mixer.startedVoices, 1);
      },
      [&mixer] { mixer.renderer.silence(); });
}

}  // namespace

TBMixer* tb_mixer_create(float sampleRate, float crossfadeMs) noexcept {
  const float rate = sampleRate > 0 ? sampleRate : defaultSampleRate;
  const float fade = crossfadeMs > 0 ? crossfadeMs : defaultCrossfadeMs;
  return new (std::nothrow) TBMixer(framesOf(fade, rate), framesOf(releaseMs, rate));
}

void tb_mixer_destroy(TBMixer* mixer) noexcept {
  delete mixer;
}

bool tb_mixer_push(TBMixer* mixer, const TBCommand* command) noexcept {
  assert(mixer != nullptr && command != nullptr);
  if (mixer->ring.push(*command)) return true;
  mixer->droppedCommands.fetch_add(1, std::memory_order_relaxed);
  return false;
}

void tb_mixer_forget(TBMixer* mixer) noexcept {
  mixer->ring.forget();
}

void tb_mixer_set_master(TBMixer* mixer, float gain) noexcept {
  const float clamped = gain > 0 ? std::min(gain, loudestMaster) : 0.0F;
  mixer->masterTarget.store(clamped, std::memory_order_relaxed);
}

float tb_mixer_get_master(const TBMixer* mixer) noexcept {
  return mixer->masterTarget.load(std::memory_order_relaxed);
}

void tb_mixer_render(TBMixer* mixer, float* left, float* right, uint32_t frames) noexcept {
  assert(mixer != nullptr && (left != nullptr || frames == 0));
  applyCommands(*mixer);
  const float master = mixer->masterTarget.load(std::memory_order_relaxed);
  const OutputChannels output{.samples = {left, right},
                              .count = right == nullptr || right == left ? 1U : 2U};
  mixer->renderer.render(output, frames, master);
  mixer->activeVoices.store(mixer->renderer.activeVoices(), std::memory_order_relaxed);
  count(mixer->renderedFrames, frames);
}

uint32_t tb_mixer_active_voices(const TBMixer* mixer) noexcept {
  return mixer->activeVoices.load(std::memory_order_relaxed);
}

uint64_t tb_mixer_started_voices(const TBMixer* mixer) noexcept {
  return mixer->startedVoices.load(std::memory_order_relaxed);
}

uint64_t tb_mixer_rendered_frames(const TBMixer* mixer) noexcept {
  return mixer->renderedFrames.load(std::memory_order_relaxed);
}

uint64_t tb_mixer_dropped_commands(const TBMixer* mixer) noexcept {
  return mixer->droppedCommands.load(std::memory_order_relaxed);
}
