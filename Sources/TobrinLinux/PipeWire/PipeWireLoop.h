/// The PipeWire library's event loop on a thread of its own ("Tobrin.PipeWire"), with the real-time
/// data thread beside it. One serves everything in a process that talks to the sound server.
///
/// A BasicLockable: the loop thread holds the lock during every callback, so whatever touches
/// PipeWire objects from elsewhere holds it too. It is recursive.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>

struct pw_context;
struct pw_loop;
struct pw_thread_loop;

namespace tobrin {

class PipeWireLoop final {
 public:
  /// Throws std::runtime_error where the library lacks its modules or its configuration.
  PipeWireLoop();
  /// Every object made with this loop is gone by now.
  ~PipeWireLoop();
  PipeWireLoop(const PipeWireLoop&) = delete;
  PipeWireLoop& operator=(const PipeWireLoop&) = delete;

  void lock();
  void unlock();

  /// Waits until `condition` holds, which callbacks bring about and tell by `wake`; false when
  /// `limit` has passed first. Thread: any but the loop's, holding the lock, which others get
  /// meanwhile.
  bool wait(const std::function<bool()>& condition, std::chrono::milliseconds limit);
  void wake();

  /// Returns when every callback that ran on the data thread has ended. Thread: any, holding the
  /// lock.
  void finishDataCallbacks();

  [[nodiscard]] bool isCurrent() const;
  [[nodiscard]] pw_context* context() const { return context_; }
  [[nodiscard]] pw_loop* loop() const;

 private:
  pw_thread_loop* loop_ = nullptr;  // fixed after construction
  pw_context* context_ = nullptr;   // fixed after construction
};

using PipeWireLock = std::lock_guard<PipeWireLoop>;

}  // namespace tobrin
