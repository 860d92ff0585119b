/// Collects key events on a monitor's thread for a test that waits for them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>

#include "Base/KeyEvent.h"
#include "Input/KeyMonitor.h"

namespace tobrin::testing {

/// Options of a monitor for which nothing is ever too old: a busy machine must not fail a test that
/// is about something else. Its events carry no time.
inline KeyMonitorOptions patient() {
  KeyMonitorOptions options;
  options.now = [] { return uint64_t{0}; };
  options.firstRetry = std::chrono::milliseconds(10);
  return options;
}

class HeardKeys {
 public:
  void operator()(const KeyEvent& event) {
    const std::scoped_lock lock(mutex_);
    text_ += event.action == KeyAction::down ? '+' : '-';
    text_ += std::to_string(event.code);
    text_ += ' ';
    ++count_;
    changed_.notify_all();
  }

  /// Waits for so many events since the last call and returns them as "+0 -0 ": pressed, released.
  /// After ten seconds it returns what there is. More events than asked for are returned too.
  std::string await(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::seconds(10), [&] { return count_ >= count; });
    count_ = 0;
    return std::exchange(text_, {});
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string text_;
  int count_ = 0;
};

}  // namespace tobrin::testing
