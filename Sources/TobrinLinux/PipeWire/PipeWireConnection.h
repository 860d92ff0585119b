/// One connection to the sound server that outlives the server: when it is lost, it is tried again
/// until it is no longer wanted. The caller holds the loop's lock. Thread: any.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "PipeWire/PipeWireTimer.h"

struct pw_core;

namespace tobrin {

class PipeWireLoop;

class PipeWireConnection final {
 public:
  struct Events {
    /// The server answers; objects may be made on `core`.
    std::function<void(pw_core* core)> connected;
    /// The server is gone or the connection ends: destroy what was made on the core.
    std::function<void()> lost;
  };

  /// After a loss the server is tried every 100 ms at first, then less often, at least every
  /// `longestPause`.
  PipeWireConnection(PipeWireLoop& loop, std::chrono::milliseconds longestPause, Events events);
  /// Ends the connection. Takes the lock itself.
  ~PipeWireConnection();
  PipeWireConnection(const PipeWireConnection&) = delete;
  PipeWireConnection& operator=(const PipeWireConnection&) = delete;

  /// Connects, and keeps the connection alive until `close`. False when no server answers now.
  bool open();

  /// Stays connected while the server lives, but tries no more once it is gone.
  void rest();

  /// Ends the connection and every further attempt.
  void close();

  /// Treats the server as gone, for `reason`: in its next round the loop drops what was made on the
  /// core, and the server is tried again.
  void breakOff(const std::string& reason);

  /// Null while there is no connection.
  [[nodiscard]] pw_core* core() const { return broken_ ? nullptr : core_; }

  /// Why there is no connection, in words.
  [[nodiscard]] const std::string& problem() const { return problem_; }

 private:
  struct Hooks;
  static void coreError(void* self, uint32_t id, int sequence, int result, const char* message);
  void timerFired();
  bool connect();
  void drop();
  void lengthenPause();

  PipeWireLoop& loop_;                            // fixed after construction
  const std::chrono::milliseconds longestPause_;  // fixed after construction
  const Events events_;                           // fixed after construction
  const std::unique_ptr<Hooks> hooks_;            // fixed after construction
  PipeWireTimer timer_;
  pw_core* core_ = nullptr;
  bool broken_ = false;  // the core is of no more use, and waits to be dropped outside its events
  bool wanted_ = false;
  std::chrono::milliseconds pause_;  // before the next attempt
  std::chrono::steady_clock::time_point connectedAt_;
  std::string problem_;
};

}  // namespace tobrin
