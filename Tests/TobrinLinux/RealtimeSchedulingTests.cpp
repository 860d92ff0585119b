#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "Support/ChildProcess.h"
#include "Support/TempFolder.h"
#include "Threads/RealtimeKit.h"
#include "Threads/RealtimeScheduling.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

/// A message bus of the test's own that stands in for the system's.
class PrivateBus final {
 public:
  PrivateBus() {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + socket_.string()).c_str(), 1);
    for (int i = 0; i < 500 && !std::filesystem::exists(socket_); ++i)
      std::this_thread::sleep_for(10ms);
  }
  ~PrivateBus() { unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

 private:
  testing::TempFolder folder_;
  const std::filesystem::path socket_ = folder_.path() / "bus";
  testing::ChildProcess daemon_{
      {"dbus-daemon", "--session", "--nofork", "--address=unix:path=" + socket_.string()}};
};

/// Grants like the real service: only to a process that limits its real-time computing.
class GrantingService final {
 public:
  GrantingService() {
    sd_bus_open_system(&bus_);
    static constexpr sd_bus_vtable methods[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("MakeThreadRealtime", "tu", "", &GrantingService::grant,
                      SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    sd_bus_add_object_vtable(bus_, nullptr, "/org/freedesktop/RealtimeKit1",
                             "org.freedesktop.RealtimeKit1", methods, this);
    EXPECT_GE(sd_bus_request_name(bus_, "org.freedesktop.RealtimeKit1", 0), 0);
    thread_ = std::thread([this] {
      while (!ending_) {
        while (sd_bus_process(bus_, nullptr) > 0) {
        }
        sd_bus_wait(bus_, 10'000);
      }
    });
  }
  ~GrantingService() {
    ending_ = true;
    thread_.join();
    sd_bus_flush_close_unref(bus_);
  }

 private:
  static int grant(sd_bus_message* message, void*, sd_bus_error* error) {
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

  sd_bus* bus_ = nullptr;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

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

TEST(RealtimeKit, SaysNoWhereTheServiceIsMissing) {
  const PrivateBus bus;
  EXPECT_FALSE(askRealtimeKit(gettid(), 10));
}

TEST(RealtimeKit, GrantsOneThreadAndDemotesItWhenItRunsAway) {
  if (!mayBeRealtime()) GTEST_SKIP() << "no real-time scheduling on this system";
  const PrivateBus bus;
  const GrantingService service;
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
