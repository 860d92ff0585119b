#include "BlockRenderer.h"

#include <algorithm>
#include <cassert>

namespace tobrin {

void BlockRenderer::addStretch(MixerVoice& voice, MixSpan span, uint32_t channels) noexcept {
  if (span.frames == 0) return;
  if (!voice.lines.hold(voice.frame(), channels)) gatherLines(voice, channels);
  if (!voice.lines.silent()) kernels_.addStretch(voice, span, space_);
}

// Adds one voice to a stretch of the block. Returns false where its sound or its release ends.
bool BlockRenderer::renderVoice(MixerVoice& voice, uint32_t channels, uint32_t frames) noexcept {
  for (uint32_t done = 0; done < frames;) {
    uint32_t count = frames - done;
    if (voice.rampLeft > 0) count = std::min(count, voice.rampLeft);
    const bool lasts = voice.lasts(count);
    const bool released = voice.releasing && count == voice.rampLeft;
    // The frame that completes a release is not written.
    uint32_t audible = released ? count - 1 : count;
    if (!lasts) audible = static_cast<uint32_t>(std::min<uint64_t>(audible, voice.framesLeft()));
    addStretch(voice, {.offset = done, .frames = audible}, channels);
    if (!lasts || released) return false;
    voice.advance(count);
    done += count;
  }
  return true;
}

void BlockRenderer::renderStretch(const OutputChannels& output, uint32_t firstFrame,
                                  uint32_t frames, const MasterRamp& ramp) noexcept {
  for (uint32_t c = 0; c < output.count; ++c)
    std::fill_n(space_.mix[c].data(), frames, 0.0F);
  pool_.forEachActive([&](MixerVoice& voice) { return renderVoice(voice, output.count, frames); });
  kernels_.addPending(space_);
  for (uint32_t c = 0; c < output.count; ++c)
    kernels_.finish(space_.mix[c].data(), output.samples[c] + firstFrame, frames, ramp);
}

void BlockRenderer::render(const OutputChannels& output, uint32_t frames, float master) noexcept {
  assert(output.count == 1 || output.count == 2);
  if (pool_.silent()) {
    for (uint32_t c = 0; c < output.count; ++c)
      std::fill_n(output.samples[c], frames, 0.0F);
  } else {
    const double step = frames > 0 ? (static_cast<double>(master) - static_cast<double>(master_)) /
                                         static_cast<double>(frames)
                                   : 0;
    for (uint32_t done = 0; done < frames;) {
      const uint32_t count = std::min(stretchFrames, frames - done);
      const double start = static_cast<double>(master_) + step * static_cast<double>(done);
      renderStretch(output, done, count,
                    {.start = static_cast<float>(start), .step = static_cast<float>(step)});
      done += count;
    }
  }
  master_ = master;
}

}  // namespace tobrin
