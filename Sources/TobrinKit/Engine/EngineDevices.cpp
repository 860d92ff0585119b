#include "Engine/EngineDevices.h"

#include <cassert>
#include <utility>

#include "Base/MachTime.h"

namespace tobrin {
EngineDevices::EngineDevices(SerialQueue& queue, std::unique_ptr<AudioOutput> audio,
                             std::unique_ptr<ForceSensor> sensor)
    : queue_(queue),
      output_(std::make_shared<OutputKeeper>(queue, std::move(audio))),
      sensing_(std::make_shared<SensorKeeper>(queue, std::move(sensor))),
      lastActivity_(queue.now()) {}

void EngineDevices::watchIdleness() {
  queue_.after(idleCheckInterval, [weak = weak_from_this(), watch = ++watch_] {
    const auto self = weak.lock();
    if (self && self->watch_ == watch) self->checkIdleness();
  });
}

void EngineDevices::checkIdleness() {
  if (machDelta(queue_.now(), lastActivity_) > idleLimitMs)
    suspend();
  else
    watchIdleness();
}

void EngineDevices::wake() {
  assert(queue_.isCurrent());
  output_->start();
  output_->expectSound();
  if (std::exchange(isSuspended_, false)) watchIdleness();
}

void EngineDevices::suspend() {
  assert(queue_.isCurrent());
  if (isSuspended_) return;
  isSuspended_ = true;
  ++watch_;
  output_->rest();
  sensing_->stop();
}

void EngineDevices::shutdown() {
  suspend();
  output_->pause();
}

void EngineDevices::restart() {
  assert(queue_.isCurrent());
  if (isSuspended_) return;
  sensing_->restart();
  output_->restart();
}

}  // namespace tobrin
