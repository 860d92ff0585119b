#include "VoiceStretches.h"

namespace tobrin {

namespace {

bool isMono(const MixerVoice& voice) {
  for (const VoiceLayer& layer : voice.layers) {
    if (layer.left != layer.right) return false;
  }
  return true;
}

/// A layer's gain and its change, before panning, and where it is to be read.
struct SoundingLayer {
  float gain, step;
  uint64_t first, frames;  ///< first sample of interest, samples in all
};

// Written field by field: a record copied whole right after its fields would wait for them.
void addSource(Line& line, const float* samples, const SoundingLayer& layer, float factor) {
  LineSource& source = line.sources[line.count++];
  source.samples = samples + layer.first;
  source.frames = layer.frames - layer.first;
  source.gain = layer.gain * factor;
  source.step = layer.step * factor;
}

void addLayer(const MixerVoice& voice, const VoiceLayer& layer, const SoundingLayer& sounding,
              uint32_t channels, VoiceStretch& stretch) {
  if (stretch.lineCount == 2) {
    addSource(stretch.lines[0], layer.left, sounding, voice.panLeft);
    addSource(stretch.lines[1], layer.right, sounding, voice.panRight);
  } else if (channels == 2) {
    addSource(stretch.lines[0], layer.left, sounding, 1);
  } else if (layer.left == layer.right) {
    addSource(stretch.lines[0], layer.left, sounding, 0.5F * (voice.panLeft + voice.panRight));
  } else {
    addSource(stretch.lines[0], layer.left, sounding, 0.5F * voice.panLeft);
    addSource(stretch.lines[0], layer.right, sounding, 0.5F * voice.panRight);
  }
}

}  // namespace

void describeStretch(const MixerVoice& voice, MixSpan span, uint32_t channels,
                     VoiceStretch& stretch) noexcept {
  const uint64_t first = voice.position >> MixerVoice::fractionBits;
  stretch.first = first;
  stretch.fraction = voice.position & (MixerVoice::one - 1);
  stretch.rate = voice.rate;
  stretch.offset = span.offset;
  stretch.frames = span.frames;
  stretch.rampFrame = voice.rampFrame;
  stretch.ramping = voice.rampLeft > 0;
  stretch.lineCount = channels == 2 && !isMono(voice) ? 2 : 1;
  stretch.panLeft = voice.panLeft;
  stretch.panRight = voice.panRight;
  stretch.lines[0].count = stretch.lines[1].count = 0;
  for (uint32_t n = 0; n < TB_LAYERS; ++n) {
    const VoiceLayer& layer = voice.layers[n];
    if (layer.frames <= first) continue;
    const float gain = stretch.ramping ? voice.rampFrom[n] : voice.target[n];
    const float step = stretch.ramping ? voice.rampStep[n] : 0;
    if (gain == 0 && step == 0) continue;
    const SoundingLayer sounding{
        .gain = gain, .step = step, .first = first, .frames = layer.frames};
    addLayer(voice, layer, sounding, channels, stretch);
  }
}

}  // namespace tobrin
