/// Keeps the motion sensor streaming while it is wanted, without ever making a key wait for it: a
/// start that fails is tried again in the background. Made on any thread. Thread: conductor.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Base/SerialQueue.h"
#include "Force/ForceSensor.h"

namespace tobrin {

class SensorKeeper final : public std::enable_shared_from_this<SensorKeeper> {
 public:
  /// Why the sensor cannot be used, in words; empty once it can.
  using ProblemCallback = std::function<void(const std::string& problem)>;

  /// The sensor may be null.
  SensorKeeper(SerialQueue& queue, std::unique_ptr<ForceSensor> sensor);

  /// Called on the queue each time the problem changes.
  void setOnProblem(ProblemCallback onProblem) { onProblem_ = std::move(onProblem); }

  void start();
  void stop();
  /// Restarts a wanted sensor.
  void restart();

  /// Whether strokes may be measured: the sensor is wanted and has no problem.
  [[nodiscard]] bool canSense();

  [[nodiscard]] const ForceSensor* sensor() const { return sensor_.get(); }

 private:
  void attempt();
  void sensorChanged();
  void tell(std::string problem);
  /// Runs `task` later unless there was another attempt or a stop since.
  void later(SerialQueue::Duration delay, void (SensorKeeper::*task)());
  void giveUpWaiting();

  SerialQueue& queue_;                         // fixed after construction
  const std::unique_ptr<ForceSensor> sensor_;  // fixed after construction
  ProblemCallback onProblem_;
  std::string problem_;
  SerialQueue::Duration pause_{};  // before the next attempt
  uint64_t attempt_ = 0;           // timers of earlier ones do nothing
  bool isWanted_ = false;
};

}  // namespace tobrin
