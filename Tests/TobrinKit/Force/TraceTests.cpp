#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "Force/ForceReplay.h"
#include "Force/ForceSensor.h"
#include "Force/KeyTrace.h"
#include "Force/TraceCsv.h"
#include "Force/TraceSource.h"
#include "Support/Failure.h"

namespace tobrin {
namespace {

constexpr uint64_t millisecond = 1'000'000;

struct Impact {
  uint64_t atMs;
  double g;
};

/// A 1000 Hz sensor, at rest but for the impacts, whose noise floor has sunk to next to nothing.
MotionTrace traceOf(uint64_t ms, const std::vector<Impact>& impacts) {
  MotionTrace trace;
  for (uint64_t i = 0; i < ms; ++i)
    trace.samples.push_back({i * millisecond, {}});
  for (const Impact& impact : impacts)  // the average has moved by a twentieth when it is measured
    trace.samples[impact.atMs].acceleration.z = impact.g / 0.95;
  return trace;
}

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
}

TEST(MotionTrace, MalformedTracesAreNamedWithFileAndLine) {
  const std::pair<const char*, std::string> rows[] = {
      {"", "T:1: expected the header \"time_ns,x,y,z\""},
      {"time_ns,x,y,z\n1,2,3\n", "T:2: expected 4 fields (time_ns,x,y,z), found 3"},
      {"time_ns,x,y,z\n1,0,0,0\n1,0,zero,0\n", "T:3: y is no number: \"zero\""},
      {"time_ns,x,y,z\n1,0,-1e300,0\n", "T:2: more than 32768 g"},
      {"time_ns,x,y,z\n-1,0,0,0\n",
       "T:2: time_ns is no whole number from 0 to 9223372036854775807: \"-1\""},
      {"time_ns,x,y,z\n99999,0,0,0\n5,0,0,0\n", "T:3: the time goes back, from 99999 to 5"},
      {"time_ns,x,y,z\n1,0,0,0\n\n2,0,0,0\n", "T:3: the line is empty"},
      {"time_ns,x,y,z\n7,0,0,0\n7,0,0,0\n",
       "T: a trace needs at least two samples at different times"},
      {"time_ns,x,y,z\n1,0,0,0\n9,0,0,0\n", "T: more than 100000 samples a second"},
  };
  EXPECT_THROW((void)KeyTrace::parse("time_ns,code\n5,65536\n", "K"), TraceError);
  EXPECT_THROW((void)KeyTrace::parse("time_ns,code\n5,1\n4,1\n", "K"), TraceError);
  EXPECT_EQ(testing::failureOf([] { MotionTrace::load("/"); }), "/: Is a directory");
  for (const auto& [text, error] : rows)
    EXPECT_EQ(testing::failureOf([&] { MotionTrace::parse(text, "T"); }), error) << text;
}

TEST(TraceSource, RepeatsStampedWithThePresent) {
  const auto clock = std::make_shared<VirtualTraceClock>(1000 * millisecond);
  ForceSensor sensor(std::make_unique<TraceSource>(traceOf(10, {{4, 1}}), "t", clock,
                                                   TraceSource::Times::present));
  ASSERT_TRUE(sensor.start());
  clock->advanceTo(1013 * millisecond);
  EXPECT_EQ(sensor.reportsReceived(), 14u);
  EXPECT_EQ(sensor.window(0, UINT64_MAX)->peakTime, 1004 * millisecond);
  clock->advanceTo(1020 * millisecond);
  EXPECT_EQ(sensor.window(1005 * millisecond, UINT64_MAX)->peakTime, 1014 * millisecond);
  const uint64_t before = sensor.reportsReceived();
  clock->advanceTo(60'000 * millisecond);
  EXPECT_LE(sensor.reportsReceived(), before + 1) << "not caught up with";
}

TEST(TraceSource, RecordedTimesAreKeptAndPassedSamplesLeftOut) {
  const auto clock = std::make_shared<VirtualTraceClock>(0);
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

TEST(ForceReplay, TheWindowGoesFromTwelveBeforeToFourteenAfter) {
  const std::pair<Impact, std::string> rows[] = {
      // counted: provisionally, at 4, 10 and 16 ms
      {{4987, 0.028}, "...."},  {{4988, 0.028}, "++++"}, {{5000, 0.028}, "++++"},
      {{5003, 0.028}, ".+++"},  {{5014, 0.028}, "...+"}, {{5015, 0.028}, "...."},
      {{4990, 0.008}, ".+++"},  // too weak to start from
      {{4990, 0.0014}, "...."},
  };
  for (const auto& [impact, counted] : rows) {
    const auto stages = replayForce(traceOf(6000, {impact}), {{{5000 * millisecond, 0}}}, 1);
    std::string found;
    for (const auto& [key, stage] : stages) {
      found += stage.counted ? '+' : '.';
      EXPECT_NEAR(stage.counted ? static_cast<double>(stage.window->peak) : impact.g, impact.g,
                  2e-4);
    }
    EXPECT_EQ(found, counted) << impact.atMs << " ms, " << impact.g << " g";
    const float settled = found[3] == '+' ? 1 + 0.1f * (stages[3].stage.position - 1) : 1;
    EXPECT_EQ(stages[2].stage.typicalAfter, 1) << "only the last stage teaches";
    EXPECT_FLOAT_EQ(stages[3].stage.typicalAfter, settled) << impact.atMs;
  }
}

TEST(ForceReplay, ASensorThatStallsLeavesKeysAtTheUsualStrength) {
  MotionTrace trace = traceOf(2000, {{1000, 0.06}});
  const KeyTrace keys{{{1000 * millisecond, 0},
                       {3000 * millisecond, 0},       // the trace is over
                       {400'000 * millisecond, 0}}};  // and the engine had gone to sleep
  const auto stages = replayForce(trace, keys, 1);
  ASSERT_EQ(stages.size(), 12u);
  EXPECT_TRUE(stages[3].stage.counted);
  for (std::size_t i = 4; i < stages.size(); ++i) {
    EXPECT_FALSE(stages[i].stage.window) << i;
    EXPECT_EQ(stages[i].stage.position, stages[3].stage.typicalAfter) << i;
  }
}

}  // namespace
}  // namespace tobrin
