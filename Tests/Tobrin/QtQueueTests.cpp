#include "Model/QtQueue.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <string>
#include <thread>

#include "Base/MachTime.h"

namespace tobrin {
namespace {

TEST(QtQueue, RunsTasksOnItsThreadInOrderAndLaterOnesNoSooner) {
  char name[] = "test";
  char* arguments[] = {name, nullptr};
  int count = 1;
  const QCoreApplication application(count, arguments);
  QtQueue queue("main");
  EXPECT_EQ(queue.name(), "main");
  std::string done;
  const auto note = [&](char what) { done += queue.isCurrent() ? what : '?'; };
  double waitedMs = 0;
  std::thread other([&] {
    EXPECT_FALSE(queue.isCurrent());
    const uint64_t begin = queue.now();
    queue.after(std::chrono::microseconds(20'100), [&, begin] {
      note('c');
      waitedMs = machDelta(queue.now(), begin);
      QCoreApplication::quit();
    });
    queue.async([&] { note('a'); });
    bool ran = false;
    queue.sync([&] {
      note('b');
      ran = true;
    });
    EXPECT_TRUE(ran);
  });
  QCoreApplication::exec();
  other.join();
  EXPECT_EQ(done, "abc");
  EXPECT_GE(waitedMs, 20.1);
}

}  // namespace
}  // namespace tobrin
