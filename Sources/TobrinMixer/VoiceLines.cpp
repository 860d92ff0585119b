#include "VoiceLines.h"

#include <algorithm>
#include <cassert>

#include "MixerVoice.h"

namespace tobrin {

namespace {

bool isMono(const MixerVoice& voice) {
  return std::ranges::all_of(voice.layers,
                             [](const VoiceLayer& layer) { return layer.left == layer.right; });
}

/// A layer's gain and its change, before panning.
struct LayerGain {
  float gain, step;
};

void addSource(Line& line, const float* samples, uint64_t frames, LayerGain gain, float factor) {
  assert(line.count < line.sources.size());
  line.sources[line.count++] = {
      .samples = samples, .frames = frames, .gain = gain.gain * factor, .step = gain.step * factor};
}

void addLayer(const MixerVoice& voice, const VoiceLayer& layer, LayerGain gain, VoiceLines& lines) {
  if (lines.lineCount == 2) {
    addSource(lines.lines[0], layer.left, layer.frames, gain, voice.panLeft);
    addSource(lines.lines[1], layer.right, layer.frames, gain, voice.panRight);
  } else if (lines.channels == 2) {
    addSource(lines.lines[0], layer.left, layer.frames, gain, 1);
  } else if (layer.left == layer.right) {
    const float both = 0.5F * (voice.panLeft + voice.panRight);
    addSource(lines.lines[0], layer.left, layer.frames, gain, both);
  } else {
    addSource(lines.lines[0], layer.left, layer.frames, gain, 0.5F * voice.panLeft);
    addSource(lines.lines[0], layer.right, layer.frames, gain, 0.5F * voice.panRight);
  }
}

}  // namespace

void gatherLines(MixerVoice& voice, uint32_t channels) noexcept {
  assert(channels == 1 || channels == 2);
  VoiceLines& lines = voice.lines;
  lines.channels = channels;
  lines.lineCount = channels == 2 && !isMono(voice) ? 2 : 1;
  lines.lines[0].count = lines.lines[1].count = 0;
  lines.shortest = UINT64_MAX;
  const bool ramping = voice.rampLeft > 0;
  for (uint32_t n = 0; n < TB_LAYERS; ++n) {
    const VoiceLayer& layer = voice.layers[n];
    if (layer.frames <= voice.frame()) continue;
    const LayerGain gain{.gain = ramping ? voice.rampFrom[n] : voice.target[n],
                         .step = ramping ? voice.rampStep[n] : 0};
    if (gain.gain == 0 && gain.step == 0) continue;
    addLayer(voice, layer, gain, lines);
    lines.shortest = std::min(lines.shortest, layer.frames);
  }
}

}  // namespace tobrin
