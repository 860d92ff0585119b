#include "VoiceStretches.h"

namespace tobrin {

namespace {

bool isMono(const VoiceLayer& layer) {
  return layer.left == layer.right;
}

/// A layer's gain and its change, before panning.
struct LayerGain {
  float gain, step;
  [[nodiscard]] bool silent() const { return gain == 0 && step == 0; }
};

LayerGain gainOf(const MixerVoice& voice, uint32_t layer) {
  if (voice.rampLeft == 0) return {voice.target[layer], 0};
  return {voice.rampFrom[layer], voice.rampStep[layer]};
}

LineSource source(const float* samples, uint64_t frames, const LayerGain& gain, float factor) {
  return {
      .samples = samples, .frames = frames, .gain = gain.gain * factor, .step = gain.step * factor};
}

// Half the sum of both panned channels.
void addToMono(Line& line, const MixerVoice& voice, const VoiceLayer& layer,
               const LayerGain& gain) {
  const float left = 0.5F * voice.panLeft;
  const float right = 0.5F * voice.panRight;
  if (isMono(layer)) {
    line.add(source(layer.left, layer.frames, gain, left + right));
  } else {
    line.add(source(layer.left, layer.frames, gain, left));
    line.add(source(layer.right, layer.frames, gain, right));
  }
}

}  // namespace

VoiceStretch stretchOf(const MixerVoice& voice, uint32_t frames, uint32_t channels) noexcept {
  VoiceStretch stretch;
  stretch.position = voice.position;
  stretch.rate = voice.rate;
  stretch.frames = frames;
  stretch.rampFrame = voice.rampFrame;
  stretch.ramping = voice.rampLeft > 0;
  bool mono = true;
  for (const VoiceLayer& layer : voice.layers)
    mono = mono && isMono(layer);
  stretch.lineCount = channels == 2 && !mono ? 2 : 1;
  stretch.panLeft = voice.panLeft;
  stretch.panRight = voice.panRight;
  for (uint32_t n = 0; n < TB_LAYERS; ++n) {
    const VoiceLayer& layer = voice.layers[n];
    const LayerGain gain = gainOf(voice, n);
    if (layer.left == nullptr || gain.silent()) continue;
    if (channels == 1) {
      addToMono(stretch.lines[0], voice, layer, gain);
    } else if (mono) {
      stretch.lines[0].add(source(layer.left, layer.frames, gain, 1));
    } else {
      stretch.lines[0].add(source(layer.left, layer.frames, gain, voice.panLeft));
      stretch.lines[1].add(source(layer.right, layer.frames, gain, voice.panRight));
    }
  }
  return stretch;
}

}  // namespace tobrin
