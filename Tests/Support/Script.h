/// What a test keeps of a source of events that somebody else owns and runs on another thread.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace tobrin::testing {

/// Opens or refuses as the test wants and hands on what the test sends. Thread: any.
template <typename Item>
class Script {
 public:
  /// Sends one item and returns when it has been handled.
  void send(const Item& item) {
    std::unique_lock lock(mutex_);
    items_.push_back(item);
    changed_.notify_all();
    changed_.wait(lock, [this] { return items_.empty(); });
  }
  /// Whether the source opens.
  void work(bool works) { set(works_, works); }
  bool works() {
    const std::scoped_lock lock(mutex_);
    return works_;
  }
  /// Ends the current run as a vanished device or server would.
  void lose() { set(lost_, true); }
  /// Waits until `open` was called this often in all.
  void awaitOpens(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return opens >= count; });
  }

  // For the source:
  bool open() {
    const std::scoped_lock lock(mutex_);
    ++opens;
    lost_ = false;
    changed_.notify_all();
    return works_;
  }
  template <typename Sink>
  void run(const Sink& sink) {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return interrupted_ || lost_ || !items_.empty(); });
      if (interrupted_ || lost_) return;
      const Item item = items_.front();
      lock.unlock();
      sink(item);
      lock.lock();
      items_.pop_front();
      changed_.notify_all();
    }
  }
  void close() {
    ++closes;
    set(interrupted_, false);
  }
  void interrupt() { set(interrupted_, true); }

  std::atomic<int> opens = 0;  ///< also refused ones
  std::atomic<int> closes = 0;

 private:
  void set(bool& flag, bool value) {
    const std::scoped_lock lock(mutex_);
    flag = value;
    changed_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> items_;  // all below guarded by mutex_
  bool works_ = true;
  bool lost_ = false;
  bool interrupted_ = false;
};

}  // namespace tobrin::testing
