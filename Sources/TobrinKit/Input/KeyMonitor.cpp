#include "Input/KeyMonitor.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "Base/MouseButton.h"

namespace tobrin {

KeyMonitor::KeyMonitor(std::unique_ptr<KeySource> source, Handler handler,
                       KeyMonitorOptions options)
    : source_(std::move(source)), handler_(std::move(handler)), options_(std::move(options)) {
  assert(source_ && handler_ && options_.now);
}

KeyMonitor::~KeyMonitor() {
  stop();
}

bool KeyMonitor::start() {
  const MutexLock lock(control_);
  if (isRunning()) return true;
  endThread();  // of a source that was lost and is being waited for
  {
    const std::scoped_lock stopLock(stopMutex_);
    stopping_ = false;
  }
  std::promise<bool> opened;
  std::future<bool> result = opened.get_future();
  thread_ = std::thread([this, promise = std::move(opened)]() mutable { run(std::move(promise)); });
  if (result.get()) return true;
  thread_.join();
  return false;
}

void KeyMonitor::stop() {
  const MutexLock lock(control_);
  endThread();
}

void KeyMonitor::endThread() {
  if (!thread_.joinable()) return;
  assert(thread_.get_id() != std::this_thread::get_id());
  {
    const std::scoped_lock lock(stopMutex_);
    stopping_ = true;
  }
  stopChanged_.notify_all();
  source_->interrupt();
  thread_.join();
  source_->close();  // forgets an interrupt that came after the thread's own `close`
}

void KeyMonitor::run(std::promise<bool> opened) {
  if (options_.onThreadStart) options_.onThreadStart(threadName);
  bool isOpen = source_->open();
  running_.store(isOpen, std::memory_order_release);
  opened.set_value(isOpen);
  while (isOpen) {
    source_->run([this](const KeySource::Event& event) { handle(event); });
    running_.store(false, std::memory_order_release);
    source_->close();
    isOpen = openAgain();
  }
}

/// After `run` has ended: false if it was asked to, else waits until the source opens again. The
/// order matters: `close` forgets an interrupt, and who interrupts has set `stopping_` before.
bool KeyMonitor::openAgain() {
  if (stopsWithin({})) return false;
  if (options_.onChange) options_.onChange();
  for (auto pause = options_.firstRetry; !stopsWithin(pause);
       pause = std::min(pause * 2, options_.longestRetry)) {
    if (!source_->open()) continue;
    running_.store(true, std::memory_order_release);
    if (options_.onChange) options_.onChange();
    return true;
  }
  return false;
}

bool KeyMonitor::stopsWithin(std::chrono::milliseconds time) {
  std::unique_lock lock(stopMutex_);
  return stopChanged_.wait_for(lock, time, [this] { return stopping_; });
}

void KeyMonitor::handle(const KeySource::Event& event) {
  static const uint64_t staleTicks = machTicks(staleMs);
  const uint64_t time = options_.now();
  const bool stale = event.time && time > *event.time && time - *event.time > staleTicks;

  if (event.autorepeat || heldBack_.holdsBack(event)) return;
  std::optional<KeyAction> action;
  switch (event.type) {
    case KeySource::EventType::keyDown:
      action = KeyAction::down;
      break;
    case KeySource::EventType::keyUp:
      action = KeyAction::up;
      break;
    case KeySource::EventType::flagsChanged:
      action = modifiers_.update(event.code, event.flags);
      break;
    case KeySource::EventType::pauseChanged:
      if (options_.onChange) options_.onChange();
      break;
  }
  if (!action) return;
  const KeyEvent heard{.code = event.code, .action = *action, .time = time};
  if (!stale) handler_(heard);
  if (options_.observer && !isMouse(heard.code)) options_.observer(heard);
}

}  // namespace tobrin
