/// A serial queue with one thread and with timers on the monotonic clock. Thread: any.
#pragma once

#include <memory>
#include <string>

#include "Base/SerialQueue.h"

namespace tobrin {

class AsioQueue final : public SerialQueue {
 public:
  /// Starts the thread, which runs `onThreadStart` first (to ask for scheduling).
  explicit AsioQueue(std::string name, std::function<void()> onThreadStart = nullptr);

  /// Runs what was posted before, drops timers that have not come due, and ends the thread.
  ~AsioQueue() override;
  AsioQueue(const AsioQueue&) = delete;
  AsioQueue& operator=(const AsioQueue&) = delete;

  void async(Task task) override;
  void sync(const Task& task) override;
  void after(Duration delay, Task task) override;
  [[nodiscard]] bool isCurrent() const override;
  [[nodiscard]] std::string_view name() const override { return name_; }
  [[nodiscard]] uint64_t now() const override;

 private:
  struct Loop;
  std::string name_;            // fixed after construction
  std::unique_ptr<Loop> loop_;  // thread-safe by itself
};

}  // namespace tobrin
