#include "Base/VirtualQueue.h"

#include <algorithm>
#include <cassert>

namespace tobrin {

VirtualQueue::VirtualQueue(std::string name, uint64_t start)
    : name_(std::move(name)), now_(start) {}

void VirtualQueue::async(Task task) {
  post(0, std::move(task));
}

void VirtualQueue::after(Duration delay, Task task) {
  post(static_cast<uint64_t>(std::max<Duration::rep>(delay.count(), 0)), std::move(task));
}

void VirtualQueue::post(uint64_t delay, Task task) {
  MutexLock lock(lock_);
  waiting_.emplace(Key{now_ + delay, posted_++}, std::move(task));
}

void VirtualQueue::sync(const Task& task) {
  assert(!isCurrent());
  runUntil(now());
  run(task);
}

uint64_t VirtualQueue::now() const {
  MutexLock lock(lock_);
  return now_;
}

std::optional<uint64_t> VirtualQueue::nextDue() const {
  MutexLock lock(lock_);
  if (waiting_.empty()) return std::nullopt;
  return waiting_.begin()->first.first;
}

void VirtualQueue::runUntil(uint64_t time) {
  while (runNext(time)) {
  }
  MutexLock lock(lock_);
  now_ = std::max(now_, time);
}

bool VirtualQueue::runNext(uint64_t time) {
  Task task;
  {
    MutexLock lock(lock_);
    const auto next = waiting_.begin();
    if (next == waiting_.end() || next->first.first > time) return false;
    now_ = std::max(now_, next->first.first);
    task = std::move(next->second);
    waiting_.erase(next);
  }
  run(task);
  return true;
}

void VirtualQueue::run(const Task& task) {
  running_ = true;
  task();
  running_ = false;
}

}  // namespace tobrin
