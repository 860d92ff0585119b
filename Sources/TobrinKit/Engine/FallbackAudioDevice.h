/// Two ways to play: the preferred one when it answers, else the other one. The two never render at
/// the same time. Thread: any.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

#include "Engine/AudioDevice.h"

namespace tobrin {

class FallbackAudioDevice final : public AudioDevice {
 public:
  using Maker = std::function<std::unique_ptr<AudioDevice>()>;

  /// `makeFallback` is called when a fallback is first needed, and may give null. `mayFallBack` is
  /// asked each time the preferred device does not start.
  FallbackAudioDevice(std::unique_ptr<AudioDevice> preferred, Maker makeFallback,
                      std::function<bool()> mayFallBack);
  ~FallbackAudioDevice() override;
  FallbackAudioDevice(const FallbackAudioDevice&) = delete;
  FallbackAudioDevice& operator=(const FallbackAudioDevice&) = delete;

  void setCallbacks(AudioCallbacks callbacks) override;
  /// Both sides get the choice; one that does not have the device plays on its default.
  void choose(const std::string& id) override;
  void findOutputs() override;
  bool start() override;
  void pause() override;
  [[nodiscard]] bool isRunning() const override;
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override;

 private:
  /// One of the two devices; only the callbacks of the one in charge reach the owner.
  struct Side {
    FallbackAudioDevice* owner;
    std::atomic<bool> isInCharge;
    std::unique_ptr<AudioDevice> device;  // guarded by the owner's mutex
    SoundOutputs outputs;                 // guarded by the owner's outputsMutex_

    static void render(void* self, float* left, float* right, uint32_t frames) noexcept;
    [[nodiscard]] AudioCallbacks callbacks();
  };

  void sideChanged(Side& side);
  void outputsChanged(Side& side, const SoundOutputs& outputs);
  void tellOutputs(const Side& side);
  bool takeFallback();
  void leaveFallback();
  [[nodiscard]] const AudioDevice& inCharge() const;

  AudioCallbacks callbacks_;  // fixed before the first start
  const Maker makeFallback_;
  const std::function<bool()> mayFallBack_;
  mutable std::mutex mutex_;
  bool isClosing_ = false;   // guarded by mutex_
  std::string chosen_;       // guarded by mutex_
  std::mutex outputsMutex_;  // taken last: devices hold locks of their own when they tell
  Side fallback_{this, false, nullptr, {}};
  Side preferred_{this, true, nullptr, {}};
};

}  // namespace tobrin
