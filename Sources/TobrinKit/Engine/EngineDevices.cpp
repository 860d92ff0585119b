#include "Engine/EngineDevices.h"

#include <utility>

#include "Engine/MachTime.h"

namespace tobrin {
namespace {

constexpr double retryMs = 1000;

}  // namespace

EngineDevices::EngineDevices(SerialQueue& queue, std::unique_ptr<AudioOutput> audio,
                             std::unique_ptr<ForceSensor> sensor)
    : queue_(queue),
      output_(std::make_shared<OutputKeeper>(queue, std::move(audio))),
      sensor_(std::move(sensor)),
      lastActivity_(queue.now()) {}

void EngineDevices::watchIdleness() {
  queue_.after(idleCheckInterval, [weak = weak_from_this(), watch = ++watch_] {
    const auto self = weak.lock();
    if (self && self->watch_ == watch) self->checkIdleness();
  });
}

void EngineDevices::checkIdleness() {
  if (MachTime::delta(queue_.now(), lastActivity_) > idleLimitMs)
    suspend();
  else
    watchIdleness();
}

void EngineDevices::wake() {
  output_->start();
  output_->expectSound();
  if (std::exchange(isSuspended_, false)) watchIdleness();
}

bool EngineDevices::startSensor() {
  if (!canSense()) return false;
  if (sensor_->isRunning() || sensor_->start()) return true;
  sensorRetry_ = queue_.now() + MachTime::ticks(retryMs);
  return false;
}

bool EngineDevices::canSense() const {
  return sensor_ && (sensor_->isRunning() || queue_.now() >= sensorRetry_);
}

void EngineDevices::stopSensor() {
  if (sensor_) sensor_->stop();
}

void EngineDevices::suspend() {
  if (isSuspended_) return;
  isSuspended_ = true;
  ++watch_;
  output_->rest();
  stopSensor();
  sensorRetry_ = 0;
}

void EngineDevices::shutdown() {
  suspend();
  output_->pause();
}

void EngineDevices::restart() {
  if (isSuspended_) return;
  if (sensor_ && sensor_->isRunning()) {
    sensor_->stop();
    sensor_->start();
  }
  output_->restart();
}

}  // namespace tobrin
