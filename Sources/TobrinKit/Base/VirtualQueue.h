/// A serial queue whose time stands still until its driver moves it: for replays and for tests.
/// Tasks run on the driver's thread, in order of their time and then of their posting. Any thread
/// may post; all else is for the driver's thread. Thread: any.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "Base/Mutex.h"
#include "Base/SerialQueue.h"

namespace tobrin {

class VirtualQueue final : public SerialQueue {
 public:
  /// `start` is the present, in `MachTime` ticks.
  explicit VirtualQueue(std::string name, uint64_t start = 0);

  void async(Task task) override;
  /// Runs what was posted before and is due, then `task`, on the calling thread.
  void sync(const Task& task) override;
  void after(Duration delay, Task task) override;
  [[nodiscard]] bool isCurrent() const override { return running_; }
  [[nodiscard]] std::string_view name() const override { return name_; }
  [[nodiscard]] uint64_t now() const override;

  /// When the next task is due; nothing where none waits.
  [[nodiscard]] std::optional<uint64_t> nextDue() const;

  /// Moves the present to `time`, running each task due by then at its own time, also those that
  /// are posted meanwhile.
  void runUntil(uint64_t time);

 private:
  using Key = std::pair<uint64_t, uint64_t>;  // due, number of the posting

  void post(uint64_t delay, Task task);
  bool runNext(uint64_t time);
  void run(const Task& task);

  const std::string name_;
  bool running_ = false;  // driver only

  mutable Mutex lock_;
  uint64_t now_ TOBRIN_GUARDED_BY(lock_);
  uint64_t posted_ TOBRIN_GUARDED_BY(lock_) = 0;
  std::map<Key, Task> waiting_ TOBRIN_GUARDED_BY(lock_);
};

}  // namespace tobrin
