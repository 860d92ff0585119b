#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "Base/MachTime.h"
#include "Engine/Conductor.h"
#include "Force/MotionReport.h"
#include "Support/HandDrivenDevice.h"
#include "Support/ScriptedMotionSource.h"
#include "Support/TestPack.h"
#include "Threads/AsioQueue.h"
#include "Threads/RealtimeKit.h"
#include "Threads/ThreadPreparation.h"
#include "Tools/Desktop/PrivateBus.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

TEST(AsioQueue, RunsTasksOfManyThreadsOneAtATimeInOrder) {
  std::vector<std::vector<int>> seen(4);
  int ran = 0;  // guarded by the queue alone
  {
    AsioQueue queue("test.queue");
    std::vector<std::jthread> posters;
    for (auto& numbers : seen) {
      posters.emplace_back([&] {
        for (int i = 0; i < 500; ++i) {
          queue.async([&, i] {
            EXPECT_TRUE(queue.isCurrent());
            ++ran;
            numbers.push_back(i);
          });
        }
      });
    }
    posters.clear();
    EXPECT_FALSE(queue.isCurrent());
  }  // the destructor runs what was posted
  EXPECT_EQ(ran, 2000);
  for (const auto& numbers : seen)
    EXPECT_TRUE(std::ranges::is_sorted(numbers));
}

TEST(AsioQueue, TimersComeNoEarlierThanAskedAndSyncWaits) {
  AsioQueue queue("test.queue");
  queue.after(1h, [] { FAIL() << "it ends with timers still waiting"; });
  std::atomic<uint64_t> firedAt = 0;
  const uint64_t start = queue.now();
  queue.after(20ms, [&] { firedAt = queue.now(); });
  int count = 0;
  queue.sync([&] { count = 1; });
  EXPECT_EQ(count, 1);
  while (firedAt == 0 && queue.now() - start < machTicks(5000))
    std::this_thread::yield();
  EXPECT_GE(firedAt - start, machTicks(20));
}

/// Key, main, sensor and render threads at once; the thread sanitizer watches.
TEST(Conductor, TakesKeysSettingsAndPacksFromManyThreads) {
  auto device = std::make_shared<testing::HandDrivenDevice::Controls>();
  testing::MotionScript motion;
  std::atomic<bool> ending = false;
  AsioQueue queue(Conductor::queueName);
  auto conductor = std::make_unique<Conductor>(
      queue, std::make_unique<AudioOutput>(std::make_unique<testing::HandDrivenDevice>(device)),
      std::make_unique<ForceSensor>(std::make_unique<testing::ScriptedMotionSource>(motion)));
  conductor->setPack(testing::TestPack::simple());
  conductor->apply({}, true);
  queue.sync([] {});

  std::thread render([&] {
    while (!ending)
      device->render(256);
  });
  std::thread sensor([&] {
    while (!ending) {
      motion.send({{0, 0, 1.1}, machNow()});
      std::this_thread::sleep_for(1ms);
    }
  });
  std::thread keys([&] {
    for (uint16_t i = 0; i < 200; ++i) {
      conductor->handle({i, KeyAction::down, machNow()});
      conductor->handle({i, KeyAction::up, machNow()});
      std::this_thread::sleep_for(1ms);
    }
  });
  for (int i = 0; i < 20; ++i) {
    conductor->setPack(testing::TestPack::simple());
    conductor->apply({.volume = 0.1f * static_cast<float>(i)}, true);
    conductor->resetCalibration();
    EXPECT_TRUE(conductor->forceSensingAvailable());
  }
  keys.join();
  queue.sync([] {});
  const AudioOutput& audio = conductor->audio();
  const uint64_t rendered = audio.renderedFrames();
  while (audio.renderedFrames() < rendered + 1024)
    std::this_thread::yield();  // until the last commands are taken
  EXPECT_EQ(audio.startedVoices() + audio.droppedCommands(), 400u);
  ending = true;
  render.join();
  sensor.join();
  conductor->audition();
  conductor.reset();  // while the phrase still waits on the queue
  EXPECT_FALSE(device->running);
  EXPECT_EQ(motion.opens, motion.closes);
}

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
