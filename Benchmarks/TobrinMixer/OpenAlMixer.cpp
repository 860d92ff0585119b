#define AL_ALEXT_PROTOTYPES
#include "OpenAlMixer.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

#include <stdexcept>
#include <string_view>
#include <vector>

namespace tobrin {

namespace {

template <typename Function>
Function extension(const char* name) {
  return reinterpret_cast<Function>(alcGetProcAddress(nullptr, name));
}

ALint linearResampler() {
  const auto name = reinterpret_cast<LPALGETSTRINGISOFT>(alGetProcAddress("alGetStringiSOFT"));
  if (name == nullptr) throw std::runtime_error("OpenAL offers no choice of resamplers");
  for (ALint index = 0; index < alGetInteger(AL_NUM_RESAMPLERS_SOFT); ++index) {
    if (std::string_view(name(AL_RESAMPLER_NAME_SOFT, index)) == "Linear") return index;
  }
  throw std::runtime_error("OpenAL has no linear resampler");
}

std::vector<float> interleaved(const TBSample& layer) {
  std::vector<float> samples;
  for (uint32_t i = 0; i < layer.frames; ++i) {
    samples.push_back(layer.left[i]);
    samples.push_back(layer.right[i]);
  }
  return samples;
}

ALuint bufferOf(const TBSample& layer) {
  const std::vector<float> samples = interleaved(layer);
  ALuint buffer = 0;
  alGenBuffers(1, &buffer);
  alBufferData(buffer, AL_FORMAT_STEREO_FLOAT32, samples.data(),
               static_cast<ALsizei>(samples.size() * sizeof(float)), 48000);
  return buffer;
}

ALuint sourceOf(ALuint buffer, float gain, float rate, ALint resampler) {
  ALuint source = 0;
  alGenSources(1, &source);
  alSourcei(source, AL_BUFFER, static_cast<ALint>(buffer));
  alSourcei(source, AL_LOOPING, AL_TRUE);
  alSourcei(source, AL_SOURCE_RESAMPLER_SOFT, resampler);
  alSourcei(source, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
  alSourcef(source, AL_GAIN, gain);
  alSourcef(source, AL_PITCH, rate);
  return source;
}

}  // namespace

struct OpenAlMixer::State {
  ALCdevice* device = nullptr;
  ALCcontext* context = nullptr;
  LPALCRENDERSAMPLESSOFT render = nullptr;
  std::vector<ALuint> sources;
  std::vector<ALuint> buffers;
};

OpenAlMixer::OpenAlMixer(std::span<const TBCommand> voices) : state_(std::make_unique<State>()) {
  const auto open = extension<LPALCLOOPBACKOPENDEVICESOFT>("alcLoopbackOpenDeviceSOFT");
  state_->render = extension<LPALCRENDERSAMPLESSOFT>("alcRenderSamplesSOFT");
  if (open == nullptr || state_->render == nullptr)
    throw std::runtime_error("OpenAL does not render into memory");
  state_->device = open(nullptr);
  const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT,
                               ALC_STEREO_SOFT,
                               ALC_FORMAT_TYPE_SOFT,
                               ALC_FLOAT_SOFT,
                               ALC_FREQUENCY,
                               48000,
                               ALC_MONO_SOURCES,
                               0,
                               ALC_STEREO_SOURCES,
                               TB_VOICES * TB_LAYERS,
                               ALC_HRTF_SOFT,
                               ALC_FALSE,
                               ALC_OUTPUT_LIMITER_SOFT,
                               ALC_FALSE,
                               0};
  state_->context = alcCreateContext(state_->device, attributes);
  if (state_->context == nullptr || alcMakeContextCurrent(state_->context) == ALC_FALSE)
    throw std::runtime_error("OpenAL gives no context");
  const ALint resampler = linearResampler();
  for (const TBCommand& voice : voices) {
    for (std::size_t n = 0; n < TB_LAYERS; ++n) {
      if (voice.layers[n].left == nullptr) continue;
      state_->buffers.push_back(bufferOf(voice.layers[n]));
      state_->sources.push_back(
          sourceOf(state_->buffers.back(), voice.weights[n], voice.rate, resampler));
    }
  }
  alSourcePlayv(static_cast<ALsizei>(state_->sources.size()), state_->sources.data());
  if (alGetError() != AL_NO_ERROR) throw std::runtime_error("OpenAL does not play the voices");
}

OpenAlMixer::~OpenAlMixer() {
  alDeleteSources(static_cast<ALsizei>(state_->sources.size()), state_->sources.data());
  alDeleteBuffers(static_cast<ALsizei>(state_->buffers.size()), state_->buffers.data());
  alcMakeContextCurrent(nullptr);
  alcDestroyContext(state_->context);
  alcCloseDevice(state_->device);
}

void OpenAlMixer::render(float* samples, uint32_t frames) {
  alcMakeContextCurrent(state_->context);
  state_->render(state_->device, samples, static_cast<ALCsizei>(frames));
}

}  // namespace tobrin
