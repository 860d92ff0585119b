#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "Threads/RealtimeKit.h"
#include "Threads/RealtimeScheduling.h"
#include "Tools/Desktop/PrivateBus.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

/// Grants like the real service: only to a process that limits its real-time computing.
int grant(sd_bus_message* message, void*, sd_bus_error* error) {
  uint64_t thread = 0;
  uint32_t priority = 0;
  sd_bus_message_read(message, "tu", &thread, &priority);
  rlimit limit{};
  getrlimit(RLIMIT_RTTIME, &limit);
  const sched_param parameters{.sched_priority = static_cast<int>(priority)};
  if (limit.rlim_max > 200'000 || priority > 20 ||
      sched_setscheduler(static_cast<pid_t>(thread), SCHED_RR, &parameters) != 0)
    return sd_bus_error_set(error, SD_BUS_ERROR_ACCESS_DENIED, "no");
  return sd_bus_reply_method_return(message, "");
}

constexpr sd_bus_vtable methods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("MakeThreadRealtime", "tu", "", grant, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

bool mayBeRealtime() {
  const sched_param parameters{.sched_priority = 1};
  bool may = false;
  std::thread([&] { may = sched_setscheduler(0, SCHED_RR, &parameters) == 0; }).join();
  return may;
}

TEST(RealtimeKit, IsGoneWithoutAtOnceWhereThereIsNoBus) {
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere", 1);
  EXPECT_FALSE(askRealtimeKit(gettid(), 10));
  std::thread(requestRealtimeScheduling).join();
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

TEST(RealtimeKit, GrantsOneThreadAndDemotesItWhenItRunsAway) {
  if (!mayBeRealtime()) GTEST_SKIP() << "no real-time scheduling on this system";
  const testing::PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
  EXPECT_FALSE(askRealtimeKit(gettid(), 10)) << "the service is missing";
  const testing::BusService service(sd_bus_open_system, "org.freedesktop.RealtimeKit1",
                                    "/org/freedesktop/RealtimeKit1", "org.freedesktop.RealtimeKit1",
                                    methods, nullptr);
  std::thread([] {
    const DemotableThread demotable;
    ASSERT_TRUE(askRealtimeKit(gettid(), 10));
    EXPECT_EQ(sched_getscheduler(0), SCHED_RR);
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (sched_getscheduler(0) == SCHED_RR && std::chrono::steady_clock::now() < end) {
    }
    EXPECT_EQ(sched_getscheduler(0), SCHED_OTHER) << "and the process still runs";
  }).join();
  EXPECT_EQ(sched_getscheduler(0), SCHED_OTHER) << "the caller's alone";
}

}  // namespace
}  // namespace tobrin
