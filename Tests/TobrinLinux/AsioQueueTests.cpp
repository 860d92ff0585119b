#include "Threads/AsioQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "Engine/MachTime.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

TEST(AsioQueue, RunsTasksOfManyThreadsOneAtATimeInOrder) {
  std::vector<std::vector<int>> seen(4);
  std::atomic<int> running = 0;
  std::atomic<bool> overlapped = false;
  {
    AsioQueue queue("test.queue");
    std::vector<std::thread> posters;
    for (std::size_t poster = 0; poster < seen.size(); ++poster) {
      posters.emplace_back([&, poster] {
        for (int i = 0; i < 500; ++i) {
          queue.async([&, poster, i] {
            if (running.fetch_add(1) != 0) overlapped = true;
            EXPECT_TRUE(queue.isCurrent());
            seen[poster].push_back(i);
            running.fetch_sub(1);
          });
        }
      });
    }
    for (auto& poster : posters)
      poster.join();
    EXPECT_FALSE(queue.isCurrent());
  }  // the destructor runs what was posted
  EXPECT_FALSE(overlapped);
  for (const auto& numbers : seen) {
    ASSERT_EQ(numbers.size(), 500u);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
  }
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
