#include "TobrinMixer.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>

#include "CommandRing.h"
#include "MixKernels.h"
#include "VoicePool.h"

using tobrin::CommandRing;
using tobrin::MasterRamp;
using tobrin::MixerVoice;
using tobrin::MixOutput;
using tobrin::VoicePool;

static_assert(std::atomic<float>::is_always_lock_free);
static_assert(std::atomic<uint64_t>::is_always_lock_free);

struct TBMixer {
  TBMixer(uint32_t fadeFrames, uint32_t releaseFrames) noexcept : pool(fadeFrames, releaseFrames) {}

  CommandRing ring;

  // Any thread. None of these orders other memory, so every access is relaxed.
  std::atomic<float> masterTarget{1.0F};
  std::atomic<uint32_t> activeVoices{0};
  std::atomic<uint64_t> startedVoices{0};
  std::atomic<uint64_t> renderedFrames{0};
  std::atomic<uint64_t> droppedCommands{0};

  // Render thread.
  float masterCurrent = 1.0F;
  VoicePool pool;
};

namespace {

constexpr float defaultSampleRate = 48000;
constexpr float defaultCrossfadeMs = 4;
constexpr float releaseMs = 6;
constexpr float loudestMaster = 4;

// Voices are mixed in stretches of this many frames, so that a long block stays in the cache.
constexpr uint32_t stretchFrames = 256;

uint32_t framesOf(float milliseconds, float sampleRate) {
  const double frames =
      std::round(static_cast<double>(milliseconds) * static_cast<double>(sampleRate) / 1000.0);
  return static_cast<uint32_t>(std::clamp(frames, 1.0, 4294967295.0));
}

void applyCommands(TBMixer& mixer) noexcept {
  mixer.ring.drain([&mixer](const TBCommand& command) {
    if (mixer.pool.apply(command)) mixer.startedVoices.fetch_add(1, std::memory_order_relaxed);
  });
}

MixOutput advanced(const MixOutput& output, uint32_t frames) {
  return {.left = output.left + frames,
          .right = output.right != nullptr ? output.right + frames : nullptr};
}

// Adds one voice to a stretch of `frames` frames and ends it where its sound or its release does.
void renderVoice(MixerVoice& voice, const MixOutput& output, uint32_t frames) noexcept {
  for (uint32_t done = 0; done < frames;) {
    uint32_t count = frames - done;
    if (voice.rampLeft > 0) count = std::min(count, voice.rampLeft);
    const bool released = voice.releasing && count == voice.rampLeft;
    const uint64_t left = voice.framesLeft();
    // The frame that completes a release is not written.
    const uint32_t audible = released ? count - 1 : count;
    mixVoice(voice, advanced(output, done),
             static_cast<uint32_t>(std::min<uint64_t>(audible, left)));
    if (left < count || released) {
      voice.active = false;
      return;
    }
    voice.advance(count);
    done += count;
  }
}

void renderVoices(VoicePool& pool, const MixOutput& output, uint32_t frames) noexcept {
  for (MixerVoice& voice : pool.voices()) {
    if (voice.active) renderVoice(voice, output, frames);
  }
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
  if (mixer->ring.push(*command)) return true;
  mixer->droppedCommands.fetch_add(1, std::memory_order_relaxed);
  return false;
}

void tb_mixer_set_master(TBMixer* mixer, float gain) noexcept {
  const float clamped = gain > 0 ? std::min(gain, loudestMaster) : 0.0F;
  mixer->masterTarget.store(clamped, std::memory_order_relaxed);
}

float tb_mixer_get_master(const TBMixer* mixer) noexcept {
  return mixer->masterTarget.load(std::memory_order_relaxed);
}

void tb_mixer_render(TBMixer* mixer, float* left, float* right, uint32_t frames) noexcept {
  applyCommands(*mixer);
  const float master = mixer->masterTarget.load(std::memory_order_relaxed);
  const MixOutput output{.left = left, .right = right != left ? right : nullptr};
  const MasterRamp ramp{
      .start = mixer->masterCurrent,
      .step = frames > 0 ? (master - mixer->masterCurrent) / static_cast<float>(frames) : 0.0F};
  for (uint32_t done = 0; done < frames;) {
    const uint32_t count = std::min(stretchFrames, frames - done);
    const MixOutput stretch = advanced(output, done);
    for (float* channel : {stretch.left, stretch.right}) {
      if (channel != nullptr) std::fill_n(channel, count, 0.0F);
    }
    renderVoices(mixer->pool, stretch, count);
    for (float* channel : {stretch.left, stretch.right}) {
      if (channel != nullptr) tobrin::applyMaster(channel, count, ramp, done);
    }
    done += count;
  }
  mixer->masterCurrent = master;
  mixer->activeVoices.store(mixer->pool.activeCount(), std::memory_order_relaxed);
  mixer->renderedFrames.fetch_add(frames, std::memory_order_relaxed);
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
