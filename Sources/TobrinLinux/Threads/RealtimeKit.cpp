#include "Threads/RealtimeKit.h"

#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>

namespace tobrin {
namespace {

// RealtimeKit grants nothing to processes that may compute longer than 200 ms without a pause. The
// soft limit stands well before the hard one, at which the kernel ends the process.
constexpr rlim_t hardLimitUs = 200'000;
constexpr rlim_t softLimitUs = 100'000;
constexpr uint64_t answerLimitUs = 5'000'000;

std::array<std::atomic<pid_t>, 16> demotable{};  // 0: free; read by the signal handler
static_assert(std::atomic<pid_t>::is_always_lock_free);

/// The kernel says that some thread ran for too long, not which one.
void demoteAll(int) {
  const sched_param ordinary{};
  for (const auto& slot : demotable) {
    const pid_t thread = slot.load(std::memory_order_relaxed);
    if (thread != 0) sched_setscheduler(thread, SCHED_OTHER, &ordinary);
  }
}

/// Puts `next` where `current` is.
void replaceFirst(pid_t current, pid_t next) {
  for (auto& slot : demotable) {
    pid_t expected = current;
    if (slot.compare_exchange_strong(expected, next, std::memory_order_relaxed)) return;
  }
}

bool limitRealtimeComputing() {
  struct sigaction action {};
  if (sigaction(SIGXCPU, nullptr, &action) != 0) return false;
  if (action.sa_handler == SIG_DFL) {  // which would end the process
    action.sa_handler = &demoteAll;
    action.sa_flags = SA_RESTART;
    if (sigaction(SIGXCPU, &action, nullptr) != 0) return false;
  }
  rlimit limit{};
  if (getrlimit(RLIMIT_RTTIME, &limit) != 0) return false;
  limit.rlim_max = std::min(limit.rlim_max, hardLimitUs);
  limit.rlim_cur = std::min({limit.rlim_cur, limit.rlim_max, softLimitUs});
  return setrlimit(RLIMIT_RTTIME, &limit) == 0;
}

struct BusDeleter {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};

}  // namespace

DemotableThread::DemotableThread() {
  replaceFirst(0, gettid());
}

DemotableThread::~DemotableThread() {
  replaceFirst(gettid(), 0);
}

bool askRealtimeKit(pid_t thread, uint32_t priority) {
  sd_bus* opened = nullptr;
  if (sd_bus_open_system(&opened) < 0) return false;
  const std::unique_ptr<sd_bus, BusDeleter> bus(opened);
  sd_bus_set_method_call_timeout(bus.get(), answerLimitUs);
  if (!limitRealtimeComputing()) return false;
  return sd_bus_call_method(bus.get(), "org.freedesktop.RealtimeKit1",
                            "/org/freedesktop/RealtimeKit1", "org.freedesktop.RealtimeKit1",
                            "MakeThreadRealtime", nullptr, nullptr, "tu",
                            static_cast<uint64_t>(thread), priority) >= 0;
}

}  // namespace tobrin
