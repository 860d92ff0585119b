/// What the conductor does, on its queue. Tasks that wait on the queue share it. Made on any
/// thread. Thread: conductor.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "Base/KeyEvent.h"
#include "Base/SerialQueue.h"
#include "Base/SplitMix64.h"
#include "Engine/DemonstrationPhrase.h"
#include "Engine/EngineDevices.h"
#include "Engine/EngineSettings.h"
#include "Engine/ForceStage.h"
#include "Engine/PressStrengths.h"
#include "Engine/StrokeMeter.h"
#include "Engine/VoicePlayer.h"

namespace tobrin {

class ConductorCore final : public std::enable_shared_from_this<ConductorCore> {
 public:
  using ForceCallback = std::function<void(const ForceReading&)>;

  ConductorCore(SerialQueue& queue, std::unique_ptr<AudioOutput> audio,
                std::unique_ptr<ForceSensor> sensor);

  void handle(const KeyEvent& event);
  void apply(const EngineSettings& settings, bool wakeNow);
  void setMasked(bool masked) { player_.setMasked(masked); }
  void setBoost(float boost) { player_.setBoost(boost); }
  void chooseOutput(const std::string& id) { devices_->audio().choose(id); }
  void findOutputs() { devices_->audio().findOutputs(); }
  void setPack(std::shared_ptr<const LoadedPack> pack);
  void audition();
  void demonstrateKey();
  void resetCalibration() { meter_.reset(); }
  void systemDidWake() { devices_->restart(); }
  void shutdown();
  void setOnForce(ForceCallback onForce) { onForce_ = std::move(onForce); }
  void setOnSensorProblem(SensorKeeper::ProblemCallback onProblem) {
    devices_->sensing().setOnProblem(std::move(onProblem));
  }
  void setOnForceStage(ForceStageCallback onStage) { onStage_ = std::move(onStage); }

  [[nodiscard]] const EngineDevices& devices() const { return *devices_; }

 private:
  /// One press whose strength is still being measured.
  struct Stroke {
    VoicePlayer::Voice voice;
    KeyEvent event;
    float gain;  // of its variation
  };

  void keyDown(const KeyEvent& event);
  void keyUp(const KeyEvent& event);
  void strikeSensed(const KeyEvent& event);
  void strikeFixed(const KeyEvent& event);
  void click(const KeyEvent& event);
  /// The strength of a tier, varied at random by up to 0.3 tiers.
  [[nodiscard]] StrokeStrength near(Tier tier);
  void refine(const Stroke& stroke, double delayMs);
  void settle(const Stroke& stroke, const StrokeMeter::Reading& reading);
  void playRelease(uint16_t code, float relative);
  void retire(std::shared_ptr<const LoadedPack> pack);
  void dropWhenFaded(std::shared_ptr<const LoadedPack> pack, bool fading, uint64_t fadedAt);
  void wake();
  void suspend();
  void report(const ForceReading& reading) const;
  void showStage(const KeyEvent& event, double delayMs, const StrokeMeter::Reading& reading) const;
  void play(const std::vector<PhraseKey>& phrase);
  void strikeDemonstrated(const PhraseKey& key);
  template <typename Task>
  void after(SerialQueue::Duration delay, Task task);
  template <typename Task>
  void inPhrase(PhraseKey::Seconds delay, Task task);

  SerialQueue& queue_;
  EngineSettings settings_;
  // Shared with its own timers.
  const std::shared_ptr<EngineDevices> devices_;
  VoicePlayer player_;
  StrokeMeter meter_;
  PressStrengths held_;
  SplitMix64 rng_;
  uint64_t phrase_ = 0;  // number of the demonstration; keys of earlier ones are not played
  ForceCallback onForce_;
  ForceStageCallback onStage_;
};

}  // namespace tobrin
