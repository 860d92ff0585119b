#include "Force/TraceClock.h"

#include <chrono>

#include "Base/MachTime.h"

namespace tobrin {

uint64_t RealTraceClock::now() const {
  return machNow();
}

bool RealTraceClock::sleepUntil(uint64_t time) {
  std::unique_lock lock(mutex_);
  const uint64_t present = now();
  if (time <= present) return !interrupted_;
  // Counted from the present, for the library's own clock may have another origin. An hour at a
  // time: a wait without end must not overflow it.
  constexpr uint64_t longest = 3'600'000'000'000;
  const uint64_t distance = time - present < longest ? time - present : longest;
  const auto wait = std::chrono::nanoseconds(static_cast<int64_t>(distance));
  if (changed_.wait_for(lock, wait, [this] { return interrupted_; })) return false;
  lock.unlock();
  return distance < longest || sleepUntil(time);
}

void RealTraceClock::interrupt() {
  const std::lock_guard lock(mutex_);
  interrupted_ = true;
  changed_.notify_all();
}

void RealTraceClock::rearm() {
  const std::lock_guard lock(mutex_);
  interrupted_ = false;
}

uint64_t VirtualTraceClock::now() const {
  const std::lock_guard lock(mutex_);
  return now_;
}

bool VirtualTraceClock::sleepUntil(uint64_t time) {
  std::unique_lock lock(mutex_);
  wanted_ = time;
  waiting_ = true;
  changed_.notify_all();
  changed_.wait(lock, [&] { return !running_ || now_ >= time; });
  waiting_ = false;
  return running_;
}

void VirtualTraceClock::interrupt() {
  const std::lock_guard lock(mutex_);
  running_ = false;
  changed_.notify_all();
}

void VirtualTraceClock::rearm() {
  const std::lock_guard lock(mutex_);
  running_ = true;
}

void VirtualTraceClock::advanceTo(uint64_t time) {
  std::unique_lock lock(mutex_);
  now_ = time;
  changed_.notify_all();
  changed_.wait(lock, [&] { return !running_ || (waiting_ && wanted_ > now_); });
}

}  // namespace tobrin
