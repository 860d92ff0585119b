#include "TobrinMixer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <new>

#include "CommandRing.h"
#include "MixKernels.h"
#include "VoicePool.h"
#include "VoiceStretches.h"

using namespace tobrin;  // NOLINT(google-build-using-namespace): a C interface over it

static_assert(std::atomic<float>::is_always_lock_free);
static_assert(std::atomic<uint64_t>::is_always_lock_free);

struct TBMixer {
  TBMixer(uint32_t fadeFrames, uint32_t releaseFrames) noexcept
      : kernels(chooseMixKernels()), pool(fadeFrames, releaseFrames) {}

  CommandRing ring;

  // Any thread. None of these orders other memory, so every access is relaxed.
  std::atomic<float> masterTarget{1.0F};
  std::atomic<uint32_t> activeVoices{0};
  std::atomic<uint64_t> startedVoices{0};
  std::atomic<uint64_t> renderedFrames{0};
  std::atomic<uint64_t> droppedCommands{0};

  // Render thread.
  float masterCurrent = 1.0F;
  const MixKernels& kernels;  ///< fixed at creation
  VoicePool pool;
  MixScratch scratch;
};

namespace {

constexpr float defaultSampleRate = 48000;
constexpr float defaultCrossfadeMs = 4;
constexpr float releaseMs = 6;
constexpr float loudestMaster = 4;

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

// Adds one voice to a stretch of `frames` frames and ends it where its sound or its release does.
void renderVoice(TBMixer& mixer, MixerVoice& voice, uint32_t channels, uint32_t frames) noexcept {
  for (uint32_t done = 0; done < frames;) {
    uint32_t count = frames - done;
    if (voice.rampLeft > 0) count = std::min(count, voice.rampLeft);
    const bool released = voice.releasing && count == voice.rampLeft;
    const uint64_t left = voice.framesLeft();
    // The frame that completes a release is not written.
    const uint64_t audible = std::min<uint64_t>(released ? count - 1 : count, left);
    mixer.kernels.addStretch(stretchOf(voice, static_cast<uint32_t>(audible), channels),
                             mixer.scratch, channels, done);
    if (left < count || released) {
      voice.active = false;
      return;
    }
    voice.advance(count);
    done += count;
  }
}

struct Channels {
  std::array<float*, 2> samples;
  uint32_t count;
};

void renderStretch(TBMixer& mixer, const Channels& channels, const MasterRamp& ramp,
                   uint32_t firstFrame, uint32_t frames) noexcept {
  for (uint32_t c = 0; c < channels.count; ++c)
    mixer.scratch.mix[c].fill(0);
  for (MixerVoice& voice : mixer.pool.voices()) {
    if (voice.active) renderVoice(mixer, voice, channels.count, frames);
  }
  for (uint32_t c = 0; c < channels.count; ++c) {
    mixer.kernels.finish(mixer.scratch.mix[c].data(), channels.samples[c] + firstFrame, frames,
                         ramp, firstFrame);
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
  const Channels channels{.samples = {left, right},
                          .count = right == nullptr || right == left ? 1U : 2U};
  if (mixer->pool.activeCount() == 0) {
    for (uint32_t c = 0; c < channels.count; ++c)
      std::fill_n(channels.samples[c], frames, 0.0F);
  } else {
    const MasterRamp ramp{
        .start = mixer->masterCurrent,
        .step = (master - mixer->masterCurrent) / static_cast<float>(std::max(frames, 1U))};
    for (uint32_t done = 0; done < frames; done += stretchFrames) {
      renderStretch(*mixer, channels, ramp, done, std::min(stretchFrames, frames - done));
    }
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
