#include "Engine/VirtualQueue.h"

#include <gtest/gtest.h>

#include <vector>

namespace tobrin {
namespace {

using std::chrono::nanoseconds;

TEST(VirtualQueue, RunsTasksAtTheirTimeInOrderOfPosting) {
  VirtualQueue queue("test", 100);
  std::vector<std::pair<int, uint64_t>> ran;
  const auto note = [&](int number) {
    return [&, number] {
      EXPECT_TRUE(queue.isCurrent());
      ran.emplace_back(number, queue.now());
    };
  };
  queue.after(nanoseconds(50), note(3));
  queue.after(nanoseconds(20), [&] {
    note(1)();
    queue.after(nanoseconds(30), note(4));
    queue.async(note(2));
  });
  queue.after(nanoseconds(51), note(5));
  EXPECT_EQ(queue.nextDue(), 120u);
  queue.runUntil(150);
  EXPECT_EQ(ran, (std::vector<std::pair<int, uint64_t>>{{1, 120}, {2, 120}, {3, 150}, {4, 150}}));
  EXPECT_EQ(queue.now(), 150u);
  queue.sync(note(6));
  EXPECT_EQ(ran.back(), (std::pair<int, uint64_t>{6, 150}));
  queue.runUntil(1000);
  EXPECT_EQ(ran.back(), (std::pair<int, uint64_t>{5, 151}));
  EXPECT_FALSE(queue.nextDue());
  EXPECT_FALSE(queue.isCurrent());
}

}  // namespace
}  // namespace tobrin
