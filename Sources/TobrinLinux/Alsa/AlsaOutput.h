/// Plays through ALSA, for desktops without a PipeWire server. Its thread ("Tobrin.Audio") renders.
/// A chosen device that is missing is tried at each start, and when a card appears while it plays;
/// where a sound server runs, that is the server's task. While paused the device is closed, once it
/// has played all it took, and the thread sleeps. Thread: any.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "Engine/AudioDevice.h"
#include "System/WakeEvent.h"

struct pollfd;

namespace tobrin {

class AlsaPcm;
class AsioQueue;

class AlsaOutput final : public AudioDevice {
 public:
  /// Opens nothing yet. The thread runs `onThreadStart` first, to ask for real-time scheduling.
  explicit AlsaOutput(std::string deviceName = "default",
                      std::function<void()> onThreadStart = nullptr);
  ~AlsaOutput() override;
  AlsaOutput(const AlsaOutput&) = delete;
  AlsaOutput& operator=(const AlsaOutput&) = delete;

  void setCallbacks(AudioCallbacks callbacks) override;
  /// The id may be any name that ALSA opens.
  void choose(const std::string& id) override;
  void findOutputs() override;
  /// Waits up to half a second for the device to open.
  bool start() override;
  void pause() override;
  [[nodiscard]] bool isRunning() const override;
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override;

 private:
  enum class Goal { pause, play, quit };
  enum class Phase { idle, opening, playing, failed };

  void run(const std::function<void()>& onThreadStart);
  bool playOnce();
  [[nodiscard]] std::unique_ptr<AlsaPcm> open();
  [[nodiscard]] std::unique_ptr<AlsaPcm> open(const std::string& name);
  [[nodiscard]] bool goesOn() const { return goal_ == Goal::play && !reopens_; }
  void play(AlsaPcm& pcm);
  void playOut(AlsaPcm& pcm);
  void fill(AlsaPcm& pcm, uint32_t frames);
  bool sleep(std::span<pollfd> waitingFor, std::chrono::nanoseconds longest);
  void fallAsleep();
  void succeeded(const std::string& output);
  void failed(const std::string& problem);
  void notifyChanged();
  void listOutputs();
  [[nodiscard]] bool leadsToServer() const;
  void outputsListed(std::vector<SoundOutput> present);
  void tellOutputs();

  const std::string deviceName_;  // fixed after construction
  AudioCallbacks callbacks_;      // fixed before the first start

  mutable std::mutex mutex_;
  std::condition_variable phaseChanged_;
  std::atomic<Goal> goal_ = Goal::pause;  // written under mutex_
  Phase phase_ = Phase::idle;             // guarded by mutex_
  bool startIsAnswered_ = false;          // guarded by mutex_
  std::string problem_;                   // guarded by mutex_
  std::string chosen_;                    // guarded by mutex_; empty: the default device
  std::string opened_;                    // guarded by mutex_; or is being opened
  bool isStandIn_ = false;                // guarded by mutex_; the default plays for the chosen one
  SoundOutputs outputs_;                  // guarded by mutex_
  bool isListed_ = false;                 // guarded by mutex_; `outputs_` names what there is
  std::atomic<bool> reopens_ = false;     // another device is to be opened

  // The thread's own.
  std::vector<float> left_;
  std::vector<float> right_;
  std::chrono::milliseconds retryPause_;
  std::string refusal_;  // of the chosen device, last time

  WakeEvent wake_;
  // Calls `changed` off the thread, which `pause` may be waiting for.
  std::unique_ptr<AsioQueue> notifier_;
  std::thread thread_;
};

}  // namespace tobrin
