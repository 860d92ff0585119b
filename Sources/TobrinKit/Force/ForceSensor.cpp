#include "Force/ForceSensor.h"

#include <atomic>
#include <future>
#include <system_error>
#include <thread>

#include "Engine/Mutex.h"
#include "Force/ImpactFilter.h"
#include "Force/MotionReport.h"

namespace tobrin {

struct ForceSensor::State {
  void stream(ForceSensor& sensor, std::promise<bool> opened);

  // Fixed after construction. While there is a sensor thread, the source is that thread's.
  std::unique_ptr<MotionSource> source;
  std::function<void()> onThreadStart;

  // Sensor thread; `start` has it while there is none.
  ImpactFilter filter;

  Mutex lifeLock;  // serialises start and stop
  std::thread thread TOBRIN_GUARDED_BY(lifeLock);
  std::atomic<bool> running = false;
  std::atomic<uint64_t> reportsReceived = 0;

  mutable Mutex ringLock;  // held to write one sample or to copy a window
  ForceRing ring TOBRIN_GUARDED_BY(ringLock);
  float noise TOBRIN_GUARDED_BY(ringLock) = static_cast<float>(ImpactFilter::initialNoise);
};

ForceSensor::ForceSensor(std::unique_ptr<MotionSource> source, std::function<void()> onThreadStart)
    : state_(std::make_unique<State>()) {
  state_->source = std::move(source);
  state_->onThreadStart = std::move(onThreadStart);
}

ForceSensor::~ForceSensor() {
  stop();
}

bool ForceSensor::start() {
  MutexLock lock(state_->lifeLock);
  if (isRunning()) return true;
  if (!state_->source) return false;
  if (state_->thread.joinable()) state_->thread.join();  // its source ended by itself
  state_->filter.rest();
  std::promise<bool> opened;
  std::future<bool> answer = opened.get_future();
  try {
    state_->thread = std::thread([this, promise = std::move(opened)]() mutable {
      state_->stream(*this, std::move(promise));
    });
  } catch (const std::system_error&) {
    return false;  // the system has no thread left; the next key asks again
  }
  return answer.get();
}

// The sensor thread. It never owns the sensor, whose destructor ends it: a running sensor that
// nobody holds any more is switched off.
void ForceSensor::State::stream(ForceSensor& sensor, std::promise<bool> opened) {
  if (onThreadStart) onThreadStart();
  const bool open = source->open();
  running.store(open, std::memory_order_release);  // read by isRunning, which acquires
  opened.set_value(open);
  if (!open) return;
  source->run(
      [&sensor](std::span<const uint8_t> report, uint64_t time) { sensor.ingest(report, time); });
  source->close();
  running.store(false, std::memory_order_release);
}

void ForceSensor::stop() {
  MutexLock lock(state_->lifeLock);
  if (!state_->thread.joinable()) return;
  state_->source->interrupt();
  state_->thread.join();
}

bool ForceSensor::isRunning() const {
  return state_->running.load(std::memory_order_acquire);
}

std::string ForceSensor::problem() const {
  return state_->source ? state_->source->problem() : "there is no motion sensor";
}

std::string ForceSensor::description() const {
  return state_->source ? state_->source->description() : "no motion sensor";
}

void ForceSensor::ingest(std::span<const uint8_t> report, uint64_t time) {
  const std::optional<Acceleration> acceleration = decodeMotionReport(report);
  if (!acceleration) return;
  const auto magnitude = static_cast<float>(state_->filter.magnitude(*acceleration));
  {
    MutexLock lock(state_->ringLock);
    state_->ring.push({time, magnitude});
    state_->noise = static_cast<float>(state_->filter.noise());
  }
  // A count of one writer that orders nothing.
  state_->reportsReceived.store(reportsReceived() + 1, std::memory_order_relaxed);
}

std::optional<ForceWindow> ForceSensor::window(uint64_t from, uint64_t to) const {
  MutexLock lock(state_->ringLock);
  return state_->ring.window(from, to);
}

std::vector<ForceSensor::Sample> ForceSensor::samples(uint64_t from, uint64_t to) const {
  MutexLock lock(state_->ringLock);
  return state_->ring.between(from, to);
}

float ForceSensor::noiseFloor() const {
  MutexLock lock(state_->ringLock);
  return state_->noise;
}

uint64_t ForceSensor::lastSampleTime() const {
  MutexLock lock(state_->ringLock);
  return state_->ring.latest();
}

uint64_t ForceSensor::reportsReceived() const {
  return state_->reportsReceived.load(std::memory_order_relaxed);
}

}  // namespace tobrin
