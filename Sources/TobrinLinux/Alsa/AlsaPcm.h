/// One opened playback device: 48 kHz, one or two channels, in a sample format that it takes. Not
/// to be used from two threads at once. Thread: any.
#pragma once

#include <poll.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Alsa/Interleaving.h"

// NOLINTBEGIN(*-reserved-identifier,cert-dcl*): as the library names them
typedef struct _snd_pcm snd_pcm_t;
typedef struct _snd_pcm_hw_params snd_pcm_hw_params_t;
// NOLINTEND(*-reserved-identifier,cert-dcl*)

namespace tobrin {

class AlsaPcm final {
 public:
  /// Opens the device of this name from the ALSA configuration. Throws std::runtime_error that
  /// names the device and the reason.
  explicit AlsaPcm(const std::string& name);
  ~AlsaPcm();
  AlsaPcm(const AlsaPcm&) = delete;
  AlsaPcm& operator=(const AlsaPcm&) = delete;

  [[nodiscard]] bool isStereo() const { return channels_ == 2; }
  [[nodiscard]] uint32_t periodFrames() const { return periodFrames_; }
  [[nodiscard]] uint32_t bufferFrames() const { return bufferFrames_; }

  /// Which output of a card it is, as `alsaCardOutputs` calls it; else the device's own name.
  [[nodiscard]] std::string output() const;

  /// What to poll for room; never empty.
  [[nodiscard]] std::vector<pollfd> pollDescriptors() const;

  /// Whether `polled`, as `poll` has left them, say that there is room or trouble. Throws as `room`
  /// does.
  [[nodiscard]] bool isReady(std::span<pollfd> polled) const;

  /// Frames that can be written now without waiting. After an underrun or a sleep of the machine
  /// the device is made ready again first. Throws std::runtime_error when it is gone.
  uint32_t room();

  /// Writes no more than `room` frames; `right` is empty for a mono device. Throws as `room` does.
  void write(std::span<const float> left, std::span<const float> right);

  /// Throws std::runtime_error with the device's name and `what`.
  [[noreturn]] void giveUp(const std::string& what) const;

 private:
  void configure();
  void chooseFormat(snd_pcm_hw_params_t* parameters);
  void recover(long error);
  [[noreturn]] void fail(const char* doing, long error) const;

  const std::string name_;
  snd_pcm_t* pcm_ = nullptr;
  DeviceFormat format_ = DeviceFormat::float32;
  uint32_t channels_ = 2;
  uint32_t periodFrames_ = 256;
  uint32_t bufferFrames_ = 768;
  std::vector<std::byte> bytes_;  // one buffer's worth of the device's format
};

}  // namespace tobrin
