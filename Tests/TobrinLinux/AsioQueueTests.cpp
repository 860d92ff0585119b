#include "Threads/AsioQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "Engine/MachTime.h"

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
  while (firedAt == 0 && queue.now() - start < MachTime::ticks(5000))
    std::this_thread::yield();
  EXPECT_GE(firedAt - start, MachTime::ticks(20));
}

}  // namespace
}  // namespace tobrin
