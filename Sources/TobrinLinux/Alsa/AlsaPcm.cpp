#include "Alsa/AlsaPcm.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

#include "Alsa/AlsaCards.h"
#include "Alsa/AlsaConfiguration.h"
#include "Alsa/QuietLibraries.h"

namespace tobrin {

namespace {

constexpr unsigned sampleRate = 48000;

}  // namespace

AlsaPcm::AlsaPcm(const std::string& name) : name_(name) {
  quietenAlsa();
  readAlsaConfigurationAgain();  // the sound server may have been started since
  if (alsaDeviceLeadsTo("jack", name)) quietenJack();
  const int result = snd_pcm_open(&pcm_, name.c_str(), SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK);
  if (result < 0) fail("cannot be opened", result);
  try {
    configure();
  } catch (...) {
    snd_pcm_close(pcm_);
    throw;
  }
}

AlsaPcm::~AlsaPcm() {
  snd_pcm_drop(pcm_);
  snd_pcm_close(pcm_);
}

void AlsaPcm::configure() {
  snd_pcm_hw_params_t* hardware = nullptr;
  snd_pcm_hw_params_alloca(&hardware);
  int result = snd_pcm_hw_params_any(pcm_, hardware);
  if (result < 0) fail("has no configuration", result);
  result = snd_pcm_hw_params_set_access(pcm_, hardware, SND_PCM_ACCESS_RW_INTERLEAVED);
  if (result < 0) fail("takes no interleaved samples", result);
  chooseFormat(hardware);
  result = snd_pcm_hw_params_set_rate(pcm_, hardware, sampleRate, 0);
  if (result < 0) fail("does not run at 48 kHz", result);

  snd_pcm_uframes_t period = periodFrames_;
  snd_pcm_uframes_t buffer = bufferFrames_;
  snd_pcm_hw_params_set_period_size_near(pcm_, hardware, &period, nullptr);
  buffer = std::max(buffer, 2 * period);
  snd_pcm_hw_params_set_buffer_size_near(pcm_, hardware, &buffer);
  result = snd_pcm_hw_params(pcm_, hardware);
  if (result < 0) fail("refuses its configuration", result);
  snd_pcm_hw_params_get_period_size(hardware, &period, nullptr);
  snd_pcm_hw_params_get_buffer_size(hardware, &buffer);
  periodFrames_ = static_cast<uint32_t>(period);
  bufferFrames_ = static_cast<uint32_t>(buffer);
  bytes_.resize(buffer * channels_ * bytesPerSample(format_));

  snd_pcm_sw_params_t* software = nullptr;
  snd_pcm_sw_params_alloca(&software);
  snd_pcm_sw_params_current(pcm_, software);
  snd_pcm_sw_params_set_avail_min(pcm_, software, period);
  snd_pcm_sw_params_set_start_threshold(pcm_, software, buffer - buffer % period);
  result = snd_pcm_sw_params(pcm_, software);
  if (result < 0) fail("refuses its configuration", result);
}

void AlsaPcm::chooseFormat(snd_pcm_hw_params_t* parameters) {
  constexpr std::pair<snd_pcm_format_t, DeviceFormat> formats[] = {
      {SND_PCM_FORMAT_FLOAT, DeviceFormat::float32},
      {SND_PCM_FORMAT_S32, DeviceFormat::int32},
      {SND_PCM_FORMAT_S16, DeviceFormat::int16}};
  const auto* chosen =
      std::find_if(std::begin(formats), std::end(formats), [&](const auto& format) {
        return snd_pcm_hw_params_set_format(pcm_, parameters, format.first) == 0;
      });
  if (chosen == std::end(formats)) fail("takes no known sample format", -EINVAL);
  format_ = chosen->second;
  for (const unsigned channels : {2U, 1U}) {
    channels_ = channels;
    if (snd_pcm_hw_params_set_channels(pcm_, parameters, channels) == 0) return;
  }
  fail("is neither stereo nor mono", -EINVAL);
}

std::string AlsaPcm::output() const {
  const std::string output = alsaOutputOf(pcm_);
  return output.empty() ? name_ : output;
}

std::vector<pollfd> AlsaPcm::pollDescriptors() const {
  const int count = snd_pcm_poll_descriptors_count(pcm_);
  if (count <= 0) fail("cannot be waited for", count);
  std::vector<pollfd> descriptors(static_cast<std::size_t>(count));
  snd_pcm_poll_descriptors(pcm_, descriptors.data(), static_cast<unsigned>(count));
  return descriptors;
}

bool AlsaPcm::isReady(std::span<pollfd> polled) const {
  unsigned short events = 0;
  const int result = snd_pcm_poll_descriptors_revents(
      pcm_, polled.data(), static_cast<unsigned>(polled.size()), &events);
  // A sound server that went away leaves its descriptors ready for ever.
  if (result < 0) fail("stopped", result);
  return (events & (POLLOUT | POLLERR | POLLHUP | POLLNVAL)) != 0;
}

uint32_t AlsaPcm::room() {
  snd_pcm_sframes_t frames = snd_pcm_avail_update(pcm_);
  if (frames < 0) {
    recover(frames);
    frames = snd_pcm_avail_update(pcm_);
    if (frames < 0) fail("stopped", frames);
  }
  return std::min(static_cast<uint32_t>(frames), bufferFrames_);
}

void AlsaPcm::write(std::span<const float> left, std::span<const float> right) {
  assert(left.size() <= bufferFrames_ && right.size() == (isStereo() ? left.size() : 0));
  const std::size_t frameBytes = channels_ * bytesPerSample(format_);
  std::size_t done = 0;
  interleave(left, right, format_, bytes_.data());
  while (done < left.size()) {
    const snd_pcm_sframes_t written =
        snd_pcm_writei(pcm_, bytes_.data() + done * frameBytes, left.size() - done);
    if (written == -EAGAIN) return;  // less room than it said; a gap is better than waiting
    if (written < 0) recover(written);
    done += written > 0 ? static_cast<std::size_t>(written) : 0;
  }
}

void AlsaPcm::recover(long error) {
  const int result = snd_pcm_recover(pcm_, static_cast<int>(error), 1);
  if (result < 0) fail("stopped", result);
}

void AlsaPcm::fail(const char* doing, long error) const {
  giveUp(std::string(doing) + " (" + snd_strerror(static_cast<int>(error)) + ")");
}

void AlsaPcm::giveUp(const std::string& what) const {
  throw std::runtime_error("the ALSA device '" + name_ + "' " + what);
}

}  // namespace tobrin
