#include "Threads/ThreadPreparation.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>
#include <system_error>
#include <thread>

#include "Threads/RealtimeKit.h"

namespace tobrin {
namespace {

// Below the sound server's own threads, and within what RealtimeKit grants by default (20).
constexpr int priority = 10;

/// The soft limit may be raised up to the hard one without a privilege.
void raiseSoftLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_RTPRIO, &limit) != 0) return;
  if (limit.rlim_cur >= priority || limit.rlim_max < priority) return;
  limit.rlim_cur = priority;
  setrlimit(RLIMIT_RTPRIO, &limit);
}

bool scheduleWithinLimits() {
  raiseSoftLimit();
  const sched_param parameters{.sched_priority = priority};
  // Programs that this thread starts must not inherit it.
  return sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters) == 0;
}

}  // namespace

void nameThisThread(std::string_view name) {
  constexpr std::size_t kernelLimit = 15;
  const std::string cut(name.substr(0, kernelLimit));
  pthread_setname_np(pthread_self(), cut.c_str());
}

void requestRealtimeScheduling() {
  if (scheduleWithinLimits()) return;
  thread_local const DemotableThread untilThisThreadEnds;
  try {
    // A bus may take its time to start the service, and this thread has keys to handle.
    std::thread([thread = gettid()] {
      nameThisThread("Tobrin.RtKit");
      askRealtimeKit(thread, priority);
    }).detach();
  } catch (const std::system_error&) {
    return;  // no thread left to ask on
  }
}

void prepareTimelyThread(std::string_view name) {
  nameThisThread(name);
  requestRealtimeScheduling();
}

}  // namespace tobrin
