/// The PipeWire library's event loop on its own thread ("Tobrin.PipeWire"), and with it the
/// real-time data thread. One serves everything in a process that talks to the sound server.
///
/// A BasicLockable: the loop thread holds the lock during every callback, so all other code that
/// touches PipeWire objects holds it too. It is recursive. Thread: any.
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

  /// Waits until `condition` holds, which callbacks bring about and then call `wake`; false when
  /// `limit` has passed first. Not to be called on the loop's thread. The caller holds the lock,
  /// which is free while this waits.
  bool wait(const std::function<bool()>& condition, std::chrono::milliseconds limit);
  void wake();

  /// Returns when every callback that ran on the data thread has ended. The caller
  /// holds the lock.
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
