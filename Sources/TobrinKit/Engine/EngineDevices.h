/// Output and motion sensor, which both run while somebody types and rest when nobody does. Made on
/// any thread. Thread: conductor.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "Base/SerialQueue.h"
#include "Engine/OutputKeeper.h"
#include "Engine/SensorKeeper.h"

namespace tobrin {

class EngineDevices final : public std::enable_shared_from_this<EngineDevices> {
 public:
  static constexpr double idleLimitMs = 180'000;  ///< without a key, until the engine is suspended
  static constexpr SerialQueue::Duration idleCheckInterval = std::chrono::seconds(15);

  /// Not suspended, and nothing started yet. The sensor may be null.
  EngineDevices(SerialQueue& queue, std::unique_ptr<AudioOutput> audio,
                std::unique_ptr<ForceSensor> sensor);

  /// Starts to check every 15 s whether somebody still types; while suspended there are no checks.
  void watchIdleness();

  /// A key went down at `time`, in host ticks.
  void noteActivity(uint64_t time) { lastActivity_ = time; }

  /// Ends a suspension and starts the output if it does not run, as `OutputKeeper::start` does. To
  /// be called before anything that is to sound.
  void wake();

  /// Fades out, stops the sensor, and pauses the output once the fade has been played.
  void suspend();

  /// Suspends, with the output paused when this returns.
  void shutdown();

  /// Restarts running devices: they may have changed while the machine slept.
  void restart();

  /// Has every sounding voice fade out; false where the ring is full.
  bool fadeOut() { return output_->fadeOut(); }

  /// Whether nothing may start to sound.
  [[nodiscard]] bool isSuspended() const { return isSuspended_; }
  /// Whether nothing sounds any more either: no sample is read.
  [[nodiscard]] bool isAtRest() const { return isSuspended_ && output_->isPaused(); }
  [[nodiscard]] AudioOutput& audio() { return output_->audio(); }
  [[nodiscard]] const AudioOutput& audio() const { return std::as_const(*output_).audio(); }
  [[nodiscard]] SensorKeeper& sensing() { return *sensing_; }
  [[nodiscard]] const ForceSensor* sensor() const { return sensing_->sensor(); }

 private:
  void checkIdleness();

  SerialQueue& queue_;                           // fixed after construction
  const std::shared_ptr<OutputKeeper> output_;   // shared with its own timers
  const std::shared_ptr<SensorKeeper> sensing_;  // likewise
  uint64_t lastActivity_;                        // host ticks
  uint64_t watch_ = 0;  // number of the idle watch; timers of others do nothing
  bool isSuspended_ = false;
};

}  // namespace tobrin
