/// A serial queue of tasks: what runs on one queue never overlaps. State that several threads ask
/// for has one owner, which keeps it on one queue and posts to it. Implemented over a thread, over
/// the event loop and over virtual time. Thread: any.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>

namespace tobrin {

class SerialQueue {
 public:
  using Task = std::function<void()>;
  using Duration = std::chrono::nanoseconds;

  virtual ~SerialQueue() = default;

  /// Runs `task` on the queue after everything posted before it. Never waits.
  virtual void async(Task task) = 0;

  /// Runs `task` on the queue and returns when it has ended. Not to be called on the
  /// queue itself.
  virtual void sync(const Task& task) = 0;

  /// Runs `task` on the queue once `delay` has passed. It cannot be cancelled: a task that may come
  /// too late checks its owner's state when it runs.
  virtual void after(Duration delay, Task task) = 0;

  /// Whether the caller runs on this queue, for assertions.
  [[nodiscard]] virtual bool isCurrent() const = 0;

  /// The queue's label, as shown in thread lists.
  [[nodiscard]] virtual std::string_view name() const = 0;

  /// The present on the clock that `after` counts on, in `MachTime` ticks.
  [[nodiscard]] virtual uint64_t now() const = 0;
};

}  // namespace tobrin
