#include "Force/ForceSensor.h"

#include <atomic>
#include <cassert>
#include <future>
#include <system_error>
#include <thread>

#include "Base/Mutex.h"
#include "Force/ImpactFilter.h"
#include "Force/MotionReport.h"

namespace tobrin {

struct ForceSensor::State {
  enum class Phase { idle, starting, running };

  void launch(ForceSensor& sensor) TOBRIN_REQUIRES(lifeLock);
  void stream(ForceSensor& sensor, std::promise<void> ended);
  void enter(Phase next);

  // Fixed after construction. While there is a sensor thread, the source is that thread's.
  std::unique_ptr<MotionSource> source;
  std::function<void()> onThreadStart;
  std::function<void()> onChange;  // fixed before the first start

  // For the sensor thread, or for `start` while there is none.
  ImpactFilter filter;

  Mutex lifeLock;  // serialises start and stop
  std::thread thread TOBRIN_GUARDED_BY(lifeLock);
  std::shared_future<void> opened TOBRIN_GUARDED_BY(lifeLock);  // of that thread
  std::atomic<Phase> phase = Phase::idle;
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

void ForceSensor::setOnChange(std::function<void()> onChange) {
  state_->onChange = std::move(onChange);
}

bool ForceSensor::start() {
  begin();
  return awaitStart();
}

void ForceSensor::begin() {
  MutexLock lock(state_->lifeLock);
  const bool isIdle = state_->phase.load(std::memory_order_acquire) == State::Phase::idle;
  if (state_->source && isIdle) state_->launch(*this);
}

bool ForceSensor::awaitStart() {
  MutexLock lock(state_->lifeLock);
  if (state_->opened.valid()) state_->opened.wait();
  return isRunning();
}

void ForceSensor::State::launch(ForceSensor& sensor) {
  assert(source);
  if (thread.joinable()) thread.join();  // its source ended by itself
  filter.rest();
  std::promise<void> promise;
  opened = promise.get_future().share();
  phase.store(Phase::starting, std::memory_order_relaxed);  // orders nothing
  try {
    thread = std::thread([this, &sensor, given = std::move(promise)]() mutable {
      stream(sensor, std::move(given));
    });
  } catch (const std::system_error&) {
    opened = {};
    enter(Phase::idle);  // the system has no thread left; the next start asks again
  }
}

// The sensor thread. It never owns the sensor, whose destructor ends it: a running sensor that
// nobody holds any more is switched off.
void ForceSensor::State::stream(ForceSensor& sensor, std::promise<void> ended) {
  if (onThreadStart) onThreadStart();
  const bool open = source->open();
  enter(open ? Phase::running : Phase::idle);
  ended.set_value();
  if (!open) return;
  source->run(
      [&sensor](std::span<const uint8_t> report, uint64_t time) { sensor.ingest(report, time); });
  source->close();
  enter(Phase::idle);
}

void ForceSensor::State::enter(Phase next) {
  phase.store(next, std::memory_order_release);  // read by isRunning, which acquires
  if (onChange) onChange();
}

void ForceSensor::stop() {
  MutexLock lock(state_->lifeLock);
  if (!state_->thread.joinable()) return;
  state_->opened.wait();  // an interruption before the source is open would be lost
  if (isRunning()) state_->source->interrupt();
  state_->thread.join();
}

bool ForceSensor::isRunning() const {
  return state_->phase.load(std::memory_order_acquire) == State::Phase::running;
}

bool ForceSensor::isStarting() const {
  return state_->phase.load(std::memory_order_acquire) == State::Phase::starting;
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
