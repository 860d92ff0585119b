/// The voice mixer joined to an output device, the user's default one or a chosen one. Its user
/// pushes mixer commands. One mutex, which the render callback never takes, lets `start`, `pause`
/// and the device's notice of a change run one at a time. Thread: any.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Base/Mutex.h"
#include "Engine/AudioDevice.h"
#include "TobrinMixer.h"

namespace tobrin {

class AudioOutput final {
 public:
  static constexpr double sampleRate = 48000;             ///< frames per second
  static constexpr float crossfadeMilliseconds = 4;       ///< length of a weight change
  static constexpr uint32_t requestedBufferFrames = 256;  ///< about 5.3 ms at 48 kHz

  /// Creates the mixer; a refusal of its memory ends the process. The device is owned.
  /// `onOutputs`, which may be empty, gets the devices that there are and the one that plays, on
  /// any thread, and must only post.
  explicit AudioOutput(std::unique_ptr<AudioDevice> device,
                       std::function<void(const SoundOutputs&)> onOutputs = nullptr);
  ~AudioOutput();
  AudioOutput(const AudioOutput&) = delete;
  AudioOutput& operator=(const AudioOutput&) = delete;

  /// `onProblem` gets the reason why the output does not run, in words (empty while all is well),
  /// when that changes and when the device does. It is called on the thread that starts or on the
  /// device's, and must only post. To be set before the first start.
  void setOnProblem(std::function<void(const std::string& problem)> onProblem);

  /// Starts the output if it does not run; returns whether it runs. A failure is logged
  /// ("Tobrin: audio engine failed to start: ...") once per cause and leaves all as it was.
  bool start();

  /// Pauses the output, and the device's own attempts to start; the render callback is not called
  /// until the next `start`.
  void pause();

  /// Plays on this device from now on, or on the default one where the id is empty. Waits for a
  /// start that is under way.
  void choose(const std::string& id);

  /// Has `onOutputs` called soon, even if nothing was played yet. Waits for a start under way.
  void findOutputs();

  /// Ends every voice and drops all waiting commands, so that neither an old sound nor a pointer
  /// into an old pack waits for the next block: for an output that is paused or stalled. Thread:
  /// the mixer's producer.
  void forgetVoices();

  /// Never waits, not even for a start under way.
  [[nodiscard]] bool isRunning() const;
  [[nodiscard]] std::string description() const;
  /// Why it does not run, in words; empty while all is well.
  [[nodiscard]] std::string problem() const;

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
  static void render(void* mixer, float* left, float* right, uint32_t frames) noexcept;
  void deviceChanged();
  bool startLocked() TOBRIN_REQUIRES(mutex_);
  void tellProblem(std::string problem) TOBRIN_REQUIRES(mutex_);

  TBMixer* const mixer_;
  std::unique_ptr<AudioDevice> device_;  // fixed after construction; mutex_ serialises its calls
  Mutex mutex_;
  bool isWanted_ TOBRIN_GUARDED_BY(mutex_) = false;  // started and not paused since
  std::atomic<bool> isRunning_ = false;  // and the last attempt succeeded; written under mutex_
  std::optional<std::string> toldProblem_ TOBRIN_GUARDED_BY(mutex_);
  std::function<void(const std::string&)> onProblem_ TOBRIN_GUARDED_BY(mutex_);
};

}  // namespace tobrin
