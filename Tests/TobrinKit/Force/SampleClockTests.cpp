#include "Force/SampleClock.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tobrin {
namespace {

constexpr uint64_t millisecond = 1'000'000;
constexpr uint64_t start = 1000 * millisecond;

/// When sample `i` of a 1000 Hz stream is read: half a millisecond after it, with some jitter.
uint64_t readTimeOf(uint64_t i) {
  return start + i * millisecond + 500'000 + (i * 7919) % 300'000;
}

TEST(SampleClock, JudgesStampsByTheClockBeforeBelievingThem) {
  using Origin = SampleClock::Origin;
  struct {
    const char* label;
    double pace;
    int64_t shift;
    Origin origin;
    int64_t mostError;  // ticks, once judged
  } const rows[] = {
      {"on the clock", 1, 0, Origin::clock, 0},
      {"another origin, far ahead", 1, 1'700'000'000'000'000'000, Origin::counter, 800'000},
      {"a cheap crystal", 1.0002, -900'000'000, Origin::counter, 900'000},
      {"a slow one, cheaper still", 0.99955, -900'000'000, Origin::counter, 900'000},
      {"microseconds", 0.001, 0, Origin::reading, 900'000},
      {"rounded up", 1, 2'400'000, Origin::clock, 800'000},
      {"ahead", 1, 3'000'000, Origin::counter, 800'000},
      {"late", 1, -249'000'000, Origin::clock, 249'000'000},
      {"too late", 1, -250'000'000, Origin::counter, 800'000},
  };
  for (const auto& row : rows) {
    SampleClock clock;
    uint64_t last = 0, judged = 0;
    for (uint64_t i = 0; i < 5000; ++i) {
      const auto counted = static_cast<int64_t>(row.pace * static_cast<double>(i * millisecond));
      const uint64_t time =
          clock.place(static_cast<int64_t>(start) + counted + row.shift, readTimeOf(i), 0);
      ASSERT_GE(time, last) << row.label;
      ASSERT_LE(time, readTimeOf(i)) << row.label;
      last = time;
      if (clock.origin() == Origin::reading) judged = i + 1;
      if (i > 150) {
        const int64_t error = static_cast<int64_t>(time - (start + i * millisecond));
        ASSERT_LE(std::abs(error), row.mostError) << row.label << " sample " << i;
      }
    }
    EXPECT_EQ(clock.origin(), row.origin) << row.label;
    EXPECT_TRUE(row.origin == Origin::reading || judged == 100) << row.label << " " << judged;
  }
}

TEST(SampleClock, StampsThatJumpAreNotBelievedAnyMore) {
  using Origin = SampleClock::Origin;
  for (const auto& [shift, origin] :
       {std::pair(int64_t{0}, Origin::clock), {1'700'000'000'000'000'000, Origin::counter}}) {
    SampleClock clock;
    const auto place = [&, by = shift](uint64_t from, uint64_t to) {
      for (uint64_t i = from; i < to; ++i)
        clock.place(static_cast<int64_t>(start + i * millisecond) + by, readTimeOf(i), 0);
    };
    place(0, 200);
    ASSERT_EQ(clock.origin(), origin);
    uint64_t read = 200;
    const int64_t ahead = static_cast<int64_t>(readTimeOf(read)) + shift + 1'000'000;
    for (const int64_t wild : {ahead, int64_t{0}, INT64_MIN, INT64_MAX, int64_t{-1}}) {
      EXPECT_EQ(clock.place(wild, readTimeOf(read), 0), readTimeOf(read)) << wild;
      ++read;
    }
    place(read, 600);
    EXPECT_EQ(clock.origin(), origin) << "and believed again";
  }
}

TEST(SampleClock, BatchesWithoutStampsAreSpreadAtTheirPace) {
  SampleClock clock;
  uint64_t time = 0;
  for (uint64_t read = 1; read <= 50; ++read)
    for (std::size_t newer = 10; newer-- > 0;)
      time = clock.place(std::nullopt, start + read * 10 * millisecond, newer);
  EXPECT_EQ(time, start + 500 * millisecond);
  const uint64_t first = clock.place(std::nullopt, start + 510 * millisecond, 9);
  EXPECT_NEAR(static_cast<double>(first - start), 501e6, 0.2e6);
  for (uint64_t read = 1; read <= 60; ++read)
    for (std::size_t newer = 10; newer-- > 0;)
      time = clock.place(std::nullopt, start + (510 + read * 20) * millisecond, newer);
  const uint64_t slower = clock.place(std::nullopt, start + 1730 * millisecond, 9);
  EXPECT_NEAR(static_cast<double>(slower - start), 1712e6, 0.2e6) << "the pace is followed";
}

}  // namespace
}  // namespace tobrin
