#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "Force/ForceSensor.h"
#include "Force/TraceCsv.h"
#include "Force/TraceSource.h"
#include "Support/ImpactTrace.h"

namespace tobrin {
namespace {

using testing::millisecond;
using testing::traceOf;

TEST(MotionTrace, WhatIsWrittenReadsBack) {
  MotionTrace trace = traceOf(3, {{1, 0.95}});
  trace.samples[2].acceleration = {-0.25, 1e-6, 123.5};
  std::ostringstream text;
  text << MotionTrace::header << "\r\n";
  for (const auto& sample : trace.samples)
    writeMotionSample(text, sample);
  text << "\n\n";
  EXPECT_EQ(MotionTrace::parse(text.str(), "it").samples, trace.samples);
  EXPECT_EQ(trace.period(), 3 * millisecond);
  for (auto& sample : trace.samples)
    sample.time += 1000 * millisecond;
  EXPECT_EQ(trace.period(), 3 * millisecond) << "wherever it begins";
}

TEST(TraceSource, RepeatsStampedWithThePresent) {
  const auto clock = std::make_shared<VirtualTraceClock>(1000 * millisecond);
  MotionTrace trace = traceOf(10, {{4, 1}});
  for (auto& sample : trace.samples)
    sample.time += 500 * millisecond;
  ForceSensor sensor(
      std::make_unique<TraceSource>(std::move(trace), "t", clock, TraceSource::Times::present));
  ASSERT_TRUE(sensor.start());
  clock->advanceTo(1013 * millisecond);
  EXPECT_EQ(sensor.reportsReceived(), 14u);
  EXPECT_EQ(sensor.window(0, UINT64_MAX)->peakTime, 1004 * millisecond);
  clock->advanceTo(1020 * millisecond);
  EXPECT_EQ(sensor.window(1005 * millisecond, UINT64_MAX)->peakTime, 1014 * millisecond);
  const uint64_t before = sensor.reportsReceived();
  clock->advanceTo(60'000 * millisecond);
  EXPECT_LE(sensor.reportsReceived(), before + 1) << "not caught up with";
  clock->advanceTo(60'020 * millisecond);
  EXPECT_NEAR(static_cast<double>(sensor.reportsReceived() - before), 21, 1) << "but gone on with";
}

TEST(TraceSource, RecordedTimesAreKeptAndPassedSamplesLeftOut) {
  const auto clock = std::make_shared<VirtualTraceClock>(0);
  TraceSource absent("/absent", clock, TraceSource::Times::recorded);
  EXPECT_FALSE(absent.open());
  EXPECT_EQ(absent.problem(), "/absent: No such file or directory");
  ForceSensor sensor(std::make_unique<TraceSource>(traceOf(100, {{5, 1}, {20, 1}}), "t", clock,
                                                   TraceSource::Times::recorded));
  ASSERT_TRUE(sensor.start());
  clock->advanceTo(10 * millisecond);
  EXPECT_EQ(sensor.reportsReceived(), 11u);
  sensor.stop();
  clock->advanceTo(15 * millisecond);  // nobody listens
  ASSERT_TRUE(sensor.start());
  clock->advanceTo(1000 * millisecond);
  EXPECT_EQ(sensor.reportsReceived(), 11u + 85u);
  EXPECT_EQ(sensor.window(10 * millisecond, UINT64_MAX)->peakTime, 20 * millisecond);
}

TEST(RealTraceClock, WaitsUntilATimeOrAnInterruption) {
  RealTraceClock clock;
  const uint64_t soon = clock.now() + 2 * millisecond;
  EXPECT_TRUE(clock.sleepUntil(soon));
  EXPECT_GE(clock.now(), soon);
  clock.interrupt();
  EXPECT_FALSE(clock.sleepUntil(UINT64_MAX) || clock.sleepUntil(soon));
  clock.rearm();
  EXPECT_TRUE(clock.sleepUntil(soon));
}

}  // namespace
}  // namespace tobrin
