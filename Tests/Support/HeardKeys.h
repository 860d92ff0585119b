/// Collects key events on a monitor's thread for a test that waits for them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>

#include "Engine/KeyEvent.h"

namespace tobrin::testing {

class HeardKeys {
 public:
  void operator()(const KeyEvent& event) {
    const std::scoped_lock lock(mutex_);
    text_ += event.action == KeyAction::down ? '+' : '-';
    text_ += std::to_string(event.code);
    text_ += ' ';
    ++count_;
    last_ = event;
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

  [[nodiscard]] KeyEvent last() const {
    const std::scoped_lock lock(mutex_);
    return last_;
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::string text_;
  int count_ = 0;
  KeyEvent last_;
};

}  // namespace tobrin::testing
