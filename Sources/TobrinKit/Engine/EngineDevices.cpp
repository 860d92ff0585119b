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
      audio_(std::move(audio)),
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
  startOutput();
  if (std::exchange(isSuspended_, false)) watchIdleness();
}

void EngineDevices::startOutput() {
  if (audio_->isRunning() || queue_.now() < outputRetry_) return;
  if (!audio_->start()) outputRetry_ = queue_.now() + MachTime::ticks(retryMs);
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
  fadeOut();
  isSuspended_ = true;
  ++watch_;
  stopSensor();
  audio_->pause();
  audio_->forgetVoices();
  outputRetry_ = sensorRetry_ = 0;
}

void EngineDevices::restart() {
  if (isSuspended_) return;
  if (sensor_ && sensor_->isRunning()) {
    sensor_->stop();
    sensor_->start();
  }
  audio_->pause();
  audio_->start();
}

bool EngineDevices::fadeOut() {
  if (isSuspended_) return true;  // nothing sounds
  TBCommand release{};
  release.type = TB_COMMAND_RELEASE_ALL;
  return tb_mixer_push(audio_->mixer(), &release);
}

}  // namespace tobrin
