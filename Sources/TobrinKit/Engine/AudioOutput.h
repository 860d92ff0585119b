/// The voice mixer joined to the default output device. Everything above it speaks in mixer
/// commands. Threads: `start`, `pause` and the device's change notice are serialised by one mutex
/// that the render callback never takes; counters and volume may be read from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "Engine/AudioDevice.h"
#include "TobrinMixer.h"

namespace tobrin {

class AudioOutput final {
 public:
  static constexpr double sampleRate = 48000;             ///< frames per second
  static constexpr float crossfadeMilliseconds = 4;       ///< length of a weight change
  static constexpr uint32_t requestedBufferFrames = 256;  ///< about 5.3 ms at 48 kHz

  /// Creates the mixer; a refusal of its memory ends the process. The device is owned.
  explicit AudioOutput(std::unique_ptr<AudioDevice> device);
  ~AudioOutput();
  AudioOutput(const AudioOutput&) = delete;
  AudioOutput& operator=(const AudioOutput&) = delete;

  /// Starts the output if it does not run; returns whether it runs. A failure is logged
  /// ("Tobrin: audio engine failed to start: ...") once per cause and leaves all as it was.
  bool start();

  /// Pauses a running output; the render callback is not called until the next `start`.
  void pause();

  [[nodiscard]] bool isRunning() const;
  [[nodiscard]] std::string description() const;

  /// Master gain, linear; the mixer clamps it to [0, 4].
  [[nodiscard]] float volume() const;
  void setVolume(float gain);

  [[nodiscard]] uint64_t startedVoices() const;
  [[nodiscard]] uint32_t activeVoices() const;
  [[nodiscard]] uint64_t renderedFrames() const;
  [[nodiscard]] uint64_t droppedCommands() const;

  /// The mixer that commands are pushed into; owned here, one producer only.
  [[nodiscard]] TBMixer* mixer() const { return mixer_; }

 private:
  static void render(void* context, float* left, float* right, uint32_t frames) noexcept;
  void deviceChanged();
  bool startLocked();

  TBMixer* mixer_;  // fixed after construction
  mutable std::mutex mutex_;
  bool isRunning_ = false;   // guarded by mutex_
  std::string lastProblem_;  // guarded by mutex_
  std::unique_ptr<AudioDevice> device_;
};

}  // namespace tobrin
