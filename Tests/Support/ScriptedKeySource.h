/// A key source driven by a test: opens or refuses as told and hands on what the test sends.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

#include "Input/KeySource.h"

namespace tobrin::testing {

/// The part that outlives the source, so that a test keeps hold of it while a monitor owns the
/// source. Thread: any.
class KeyScript {
 public:
  /// Sends one event and returns when it has been handled.
  void send(const KeySource::Event& event) {
    std::unique_lock lock(mutex_);
    events_.push_back(event);
    changed_.notify_all();
    changed_.wait(lock, [this] { return events_.empty(); });
  }
  void press(uint16_t code) { send({.type = KeySource::EventType::keyDown, .code = code}); }
  void release(uint16_t code) { send({.type = KeySource::EventType::keyUp, .code = code}); }

  /// Whether this program may listen, and whether keys open where it may.
  void allow(bool allowed) { set(allowed_, allowed); }
  void work(bool works) { set(works_, works); }
  /// Ends the current `run` as a vanished display server would.
  void lose() { set(lost_, true); }
  std::atomic<int> requests = 0;  ///< for permission

  /// Waits until `open` was called this often in all.
  void awaitOpens(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return opens_ >= count; });
  }

 private:
  friend class ScriptedKeySource;
  void set(bool& flag, bool value) {
    const std::scoped_lock lock(mutex_);
    flag = value;
    changed_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<KeySource::Event> events_;  // all below guarded by mutex_
  bool allowed_ = true;
  bool works_ = true;
  bool lost_ = false;
  bool interrupted_ = false;
  int opens_ = 0;
};

class ScriptedKeySource final : public KeySource {
 public:
  explicit ScriptedKeySource(KeyScript& script) : script_(script) {}

  bool open() override {
    const std::scoped_lock lock(script_.mutex_);
    ++script_.opens_;
    script_.lost_ = false;
    script_.changed_.notify_all();
    return script_.allowed_ && script_.works_;
  }

  void run(const Sink& sink) override {
    std::unique_lock lock(script_.mutex_);
    for (;;) {
      script_.changed_.wait(lock, [this] {
        return script_.interrupted_ || script_.lost_ || !script_.events_.empty();
      });
      if (script_.interrupted_ || script_.lost_) return;
      const Event event = script_.events_.front();
      lock.unlock();
      sink(event);
      lock.lock();
      script_.events_.pop_front();
      script_.changed_.notify_all();
    }
  }

  void close() override { script_.set(script_.interrupted_, false); }
  void interrupt() override { script_.set(script_.interrupted_, true); }
  [[nodiscard]] bool hasPermission() const override { return isAllowed(); }
  bool requestPermission() override {
    ++script_.requests;
    return isAllowed();
  }
  [[nodiscard]] std::string problem() const override { return isAllowed() ? "" : "not allowed"; }
  [[nodiscard]] std::string description() const override { return "a script"; }

 private:
  [[nodiscard]] bool isAllowed() const {
    const std::scoped_lock lock(script_.mutex_);
    return script_.allowed_;
  }
  KeyScript& script_;
};

}  // namespace tobrin::testing
