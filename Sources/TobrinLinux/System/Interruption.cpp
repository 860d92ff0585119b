#include "System/Interruption.h"

#include <atomic>
#include <csignal>

namespace tobrin {

namespace {

static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal's handler");
std::atomic<bool> interrupted = false;

extern "C" void rememberInterruption(int /*signal*/) {
  interrupted.store(true, std::memory_order_relaxed);
}

}  // namespace

void watchForInterruption() {
  (void)std::signal(SIGINT, rememberInterruption);
  (void)std::signal(SIGTERM, rememberInterruption);
}

bool isInterrupted() {
  return interrupted.load(std::memory_order_relaxed);
}

}  // namespace tobrin
