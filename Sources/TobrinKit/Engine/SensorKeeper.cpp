#include "Engine/SensorKeeper.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace tobrin {
namespace {

constexpr SerialQueue::Duration firstPause = std::chrono::seconds(1);
constexpr SerialQueue::Duration answerLimit = std::chrono::seconds(1);
constexpr SerialQueue::Duration longestPause = std::chrono::seconds(10);

}  // namespace

SensorKeeper::SensorKeeper(SerialQueue& queue, std::unique_ptr<ForceSensor> sensor)
    : queue_(queue), sensor_(std::move(sensor)) {}

void SensorKeeper::start() {
  assert(queue_.isCurrent());
  if (!sensor_ || std::exchange(isWanted_, true)) return;
  if (attempt_ == 0) {
    sensor_->setOnChange([&queue = queue_, weak = weak_from_this()] {
      queue.async([weak] {
        if (const auto self = weak.lock()) self->sensorChanged();
      });
    });
  }
  pause_ = firstPause;
  attempt();
}

void SensorKeeper::attempt() {
  ++attempt_;
  sensor_->begin();
  later(answerLimit, &SensorKeeper::giveUpWaiting);
}

void SensorKeeper::later(SerialQueue::Duration delay, void (SensorKeeper::*task)()) {
  queue_.after(delay, [weak = weak_from_this(), attempt = attempt_, task] {
    const auto self = weak.lock();
    if (self && self->attempt_ == attempt) (*self.*task)();
  });
}

void SensorKeeper::giveUpWaiting() {
  if (sensor_->isStarting()) tell("the motion sensor does not answer");
}

void SensorKeeper::sensorChanged() {
  assert(queue_.isCurrent());
  if (!isWanted_ || sensor_->isStarting()) return;
  std::string problem = sensor_->problem();
  if (sensor_->isRunning()) {
    pause_ = firstPause;
  } else {
    if (problem.empty()) problem = "the motion sensor stopped";
    later(pause_, &SensorKeeper::attempt);
    pause_ = std::min(pause_ * 2, longestPause);
  }
  tell(std::move(problem));
}

void SensorKeeper::stop() {
  assert(queue_.isCurrent());
  if (!std::exchange(isWanted_, false)) return;
  ++attempt_;
  sensor_->stop();
}

void SensorKeeper::restart() {
  if (!isWanted_) return;
  stop();
  start();
}

bool SensorKeeper::canSense() {
  if (!isWanted_) return false;
  // A running sensor waits by itself for a device that has vanished.
  if (sensor_->isRunning()) tell(sensor_->problem());
  return problem_.empty();
}

void SensorKeeper::tell(std::string problem) {
  if (problem == problem_) return;
  problem_ = std::move(problem);
  if (onProblem_) onProblem_(problem_);
}

}  // namespace tobrin
