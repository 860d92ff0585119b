/// The kernel's loopback card: what is played at one end can be recorded at the other.
/// Thread: main.
#pragma once

#include <alsa/asoundlib.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tobrin::testing {

/// Pulls the card out ("unbind") or puts it back ("bind"). Needs root.
inline void tellLoopbackDriver(const char* action) {
  std::ofstream(std::string("/sys/bus/platform/drivers/snd_aloop/") + action) << "snd_aloop.0";
}

/// Hears the other end of the card.
class LoopbackListener {
 public:
  /// Listens for frames of these two levels.
  LoopbackListener(float left, float right) : left_(left), right_(right) {
    snd_pcm_open(&pcm_, "hw:Loopback,1,0", SND_PCM_STREAM_CAPTURE, SND_PCM_NONBLOCK);
    snd_pcm_set_params(pcm_, SND_PCM_FORMAT_FLOAT, SND_PCM_ACCESS_RW_INTERLEAVED, 2, 48000, 0,
                       500000);
    if (snd_pcm_start(pcm_) != 0) throw std::runtime_error("the card's other end is deaf");
  }
  ~LoopbackListener() { snd_pcm_close(pcm_); }
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  /// Frames so far that held the two levels.
  int heard() {
    std::vector<float> samples(std::size_t{2} * 4096);
    for (;;) {
      const auto frames = snd_pcm_readi(pcm_, samples.data(), samples.size() / 2);
      if (frames <= 0) return heard_;
      for (std::size_t i = 0; i < static_cast<std::size_t>(frames); ++i) {
        if (samples[2 * i] == left_ && samples[2 * i + 1] == right_) ++heard_;
      }
    }
  }

 private:
  snd_pcm_t* pcm_ = nullptr;
  float left_, right_;
  int heard_ = 0;
};

}  // namespace tobrin::testing
