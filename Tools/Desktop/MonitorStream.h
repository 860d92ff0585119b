/// Captures what a sink plays, with the time of every frame. `process` runs on the sound server's
/// real-time thread, all else on the loop's.
///
/// What time a frame has: the graph works in cycles; a cycle starts when its driver (here the null
/// sink's timer) wakes, at `clock.nsec`, and moves `clock.duration` frames. A player's buffer
/// handed over in a cycle is what the sink plays in that cycle, so its frame k is given the time
///
///     clock.nsec + k / rate.
///
/// The sink's monitor gives out the buffer that the sink took in the cycle before, because the
/// driver's outputs are read before its inputs are written. A capture stream therefore sees, in a
/// cycle, exactly the previous cycle's frames, and takes their times from the previous cycle's
/// clock. Where the clock jumped between the two cycles the previous start is computed back from
/// the present one. Thread: any.
#pragma once

#include <pipewire/pipewire.h>
#include <spa/node/io.h>

#include <atomic>
#include <string>

#include "PipeWire/BlockRing.h"
#include "PipeWireHandles.h"
#include "StreamFormat.h"

namespace tobrin::testing {

class MonitorStream final {
 public:
  /// An empty sink name means the default one. `ring` must outlive the stream.
  MonitorStream(pw_main_loop* loop, std::string sink, BlockRing& ring);
  ~MonitorStream();
  MonitorStream(const MonitorStream&) = delete;
  MonitorStream& operator=(const MonitorStream&) = delete;

  /// Connects where there is no connection, or only the rest of a lost one; false when no server
  /// answers.
  bool ensureConnected();

 private:
  static void coreError(void* self, uint32_t id, int sequence, int result, const char* message);
  static void ioChanged(void* self, uint32_t id, void* area, uint32_t size);
  static void process(void* self);

  bool connectStream();
  void disconnect();
  [[nodiscard]] int64_t startOfCaptured(size_t frames) noexcept;

  const std::string sink_;
  BlockRing& ring_;
  PipeWireHandle<pw_context> context_;
  PipeWireHandle<pw_core> core_;
  PipeWireHandle<pw_stream> stream_;
  spa_hook coreListener_{};
  spa_hook streamListener_{};
  bool lost_ = false;

  // stored by the loop's thread before the first process() that sees it
  std::atomic<pw_stream*> running_{
      nullptr};  // what stream_ owns, also while that is being destroyed
  std::atomic<spa_io_position*> position_{nullptr};

  // real-time thread
  uint64_t lastPosition_ = 0;
  uint64_t lastDuration_ = 0;
  int64_t lastNs_ = 0;
};

}  // namespace tobrin::testing
