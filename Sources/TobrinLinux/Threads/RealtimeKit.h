/// RealtimeKit, the system service that grants real-time scheduling to programs that have no limit
/// set for it. Thread: any.
#pragma once

#include <sys/types.h>

#include <cstdint>

namespace tobrin {

/// Has a thread of this process scheduled round-robin at `priority`; returns whether that was
/// granted. Waits for the answer. Lowers the process's limit on real-time computing without a pause
/// as the service demands.
bool askRealtimeKit(pid_t thread, uint32_t priority);

/// While it lives, the thread that made it goes on with ordinary scheduling when real-time
/// computing reaches that limit. Threads without one end the process there.
/// To be made and destroyed on the thread in question.
class DemotableThread final {
 public:
  DemotableThread();
  ~DemotableThread();
  DemotableThread(const DemotableThread&) = delete;
  DemotableThread& operator=(const DemotableThread&) = delete;
};

}  // namespace tobrin
