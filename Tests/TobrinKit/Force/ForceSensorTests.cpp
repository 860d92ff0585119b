#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

#include "Force/ForceRecorder.h"
#include "Force/ForceSensor.h"
#include "Force/ImpactFilter.h"
#include "Force/MotionReport.h"
#include "Support/ScriptedKeySource.h"
#include "Support/ScriptedMotionSource.h"

namespace tobrin {
namespace {

using testing::MotionScript;
using testing::ScriptedMotionSource;

/// Feeds one impact of exactly `g` at `time` to a sensor at rest at 0: the average has moved by a
/// twentieth when the magnitude is taken.
void strike(ForceSensor& sensor, double g, uint64_t time) {
  sensor.ingest(encodeMotionReport({0, 0, g / 0.95}), time);
}

TEST(MotionReport, ReadsLittleEndianFixedPoint) {
  MotionReport report{};
  report[6] = 0x00, report[7] = 0x80, report[8] = 0x01;                        // x: 1.5
  report[10] = 0x00, report[11] = 0x00, report[12] = 0xff, report[13] = 0xff;  // y: -1
  report[17] = 0x80;                                                           // z: the lowest
  EXPECT_EQ(decodeMotionReport(report), (Acceleration{1.5, -1, -32768}));
  const Acceleration wild{INFINITY, -1e300, NAN};
  EXPECT_EQ(decodeMotionReport(encodeMotionReport(wild)),
            (Acceleration{2147483647 / 65536.0, -32768, 0}));
}

TEST(ImpactFilter, TiltFadesAndImpactsLeaveTheNoiseAlone) {
  ImpactFilter filter;
  EXPECT_EQ(filter.magnitude({0.1, 0.2, 0.9}), 0) << "the first sample is rest";
  EXPECT_NEAR(filter.magnitude({0.1, 0.2, 1.9}), 0.95, 1e-12);
  for (const auto& [g, moves] : {std::pair{0.0079, true}, std::pair{0.0081, false}}) {
    ImpactFilter fresh;
    fresh.magnitude({});
    const double rested = fresh.noise();
    EXPECT_NEAR(rested, ImpactFilter::initialNoise * 0.998, 1e-12);
    fresh.magnitude({g / 0.95, 0, 0});
    EXPECT_EQ(fresh.noise() != rested, moves) << g;
  }
}

TEST(ForceSensor, WindowFindsTheStrongestSampleBetweenTwoTimes) {
  ForceSensor sensor(nullptr);
  EXPECT_FALSE(sensor.window(0, UINT64_MAX));
  for (uint64_t time = 100; time <= 110; ++time)
    sensor.ingest(encodeMotionReport({}), time);
  EXPECT_EQ(sensor.window(100, 110), (ForceWindow{0, 0, 11, 110})) << "at rest: no peak time";
  strike(sensor, 0.5, 111);
  const auto hit = sensor.window(105, 111);
  EXPECT_EQ(hit, (ForceWindow{hit->peak, 111, 7, 111}));
  EXPECT_NEAR(hit->peak, 0.5f, 1e-4f);
  EXPECT_EQ(sensor.window(105, 110), (ForceWindow{0, 0, 6, 111})) << "what follows is no part";
  EXPECT_FALSE(sensor.window(112, 200)) << "newer than every sample";
  EXPECT_FALSE(sensor.window(0, 99)) << "older than every sample";
}

TEST(ForceSensor, KeepsTheNewestSamplesAndEqualPeaksGiveTheNewest) {
  ForceRing ring;
  const uint64_t pushed = ForceRing::capacity + 1;
  for (uint64_t time = 1; time <= pushed; ++time)
    ring.push({time, 1.0f});
  const auto window = ring.window(0, UINT64_MAX);
  EXPECT_EQ(window, (ForceWindow{1.0f, pushed, ForceRing::capacity, pushed}));
  EXPECT_EQ(ring.between(0, 3), (std::vector<ForceSample>{{2, 1.0f}, {3, 1.0f}}))
      << "the first is gone";
}

TEST(ForceSensor, WrongLengthsAndClocksThatJumpAreHarmless) {
  ForceSensor sensor(nullptr);
  for (const std::size_t length : {0u, 1u, 21u, 23u, 256u})
    sensor.ingest(std::vector<uint8_t>(length, 0xff), 5);
  sensor.ingest(encodeMotionReport({}), 1000);
  strike(sensor, 1, 1001);
  strike(sensor, 9, 10);  // the clock jumped back
  EXPECT_FALSE(sensor.window(990, 1014)) << "no impact is read across the jump";
  strike(sensor, 2, UINT64_MAX);
  EXPECT_FALSE(sensor.window(990, 1014)) << "nor from the future";
  EXPECT_EQ(sensor.reportsReceived(), 4u);
}

TEST(ForceSensor, StreamsUntilStoppedAndStartsAgainAtRest) {
  MotionScript script;
  std::atomic<int> threads = 0;
  {
    ForceSensor sensor(std::make_unique<ScriptedMotionSource>(script), [&] { ++threads; });
    sensor.stop();  // before any start
    for (uint64_t round = 1; round <= 20; ++round) {
      ASSERT_TRUE(sensor.start());
      ASSERT_TRUE(sensor.start()) << "running already";
      script.send({{0, 0, static_cast<double>(round)}, round});
      sensor.stop();
      EXPECT_FALSE(sensor.isRunning());
    }
    EXPECT_EQ(sensor.window(1, 20)->peak, 0) << "each start takes its first sample as rest";
    EXPECT_EQ(sensor.window(1, 20)->samples, 20) << "the ring outlives a stop";
    ASSERT_TRUE(sensor.start());
  }  // the destructor stops it
  EXPECT_EQ((std::array{script.opens.load(), script.closes.load(), threads.load()}),
            (std::array{21, 21, 21}));
}

TEST(ForceSensor, ASourceThatRefusesOrEndsLeavesItStopped) {
  MotionScript script;
  ForceSensor sensor(std::make_unique<ScriptedMotionSource>(script));
  script.work(false);
  EXPECT_FALSE(sensor.start());
  EXPECT_FALSE(sensor.isRunning());
  script.work(true);
  ASSERT_TRUE(sensor.start());
  script.lose();
  while (sensor.isRunning())
    std::this_thread::yield();
  EXPECT_TRUE(sensor.start()) << "may be tried again";
  ForceSensor none(nullptr);
  EXPECT_FALSE(none.start());
  EXPECT_EQ(none.description() + ": " + none.problem(),
            "no motion sensor: there is no motion sensor");
}

using testing::KeyScript;
using testing::ScriptedKeySource;

class ForceRecorderTest : public ::testing::Test {
 protected:
  MotionScript motion;
  KeyScript keys;
  ForceRecorder recorder{std::make_unique<ScriptedMotionSource>(motion),
                         [this](KeyMonitor::Handler handler) {
                           return std::make_unique<KeyMonitor>(
                               std::make_unique<ScriptedKeySource>(keys), std::move(handler));
                         }};
};

TEST_F(ForceRecorderTest, KeepsSamplesInOrderAndOfKeysOnlyTheGroup) {
  ASSERT_TRUE(recorder.start());
  motion.send({{0, 0, 1}, 100});
  motion.send({{0, 0, 9}, 50});  // the sensor's clock jumped back
  motion.send({{0.5, 0, 1}, 200});
  motion.send({{0.25, 0, 1}, 200});
  EXPECT_EQ(recorder.take().samples,
            (std::vector<MotionTrace::Sample>{
                {100, {0, 0, 1}}, {200, {0.5, 0, 1}}, {200, {0.25, 0, 1}}}));
  for (const uint16_t code : std::vector<uint16_t>{12, 48, 76, 117, 59}) {
    keys.press(code);
    keys.release(code);
  }
  std::vector<uint16_t> codes;
  for (const auto& key : recorder.take().keys)
    codes.push_back(key.code);
  EXPECT_EQ(codes, (std::vector<uint16_t>{0, 56, 36, 51, 56})) << "Tab counts as a modifier";
  recorder.stop();
  EXPECT_GT(keys.closes, 0);
  EXPECT_EQ(motion.closes, 1);
}

TEST_F(ForceRecorderTest, SaysWhatIsMissingAndLeavesNothingRunning) {
  keys.allowed = false;
  EXPECT_FALSE(recorder.start());
  EXPECT_EQ(recorder.problem(), "not allowed");
  EXPECT_EQ(motion.closes, 1);
  motion.work(false);
  EXPECT_FALSE(recorder.start());
  EXPECT_EQ(recorder.problem(), "the test says no");
}

}  // namespace
}  // namespace tobrin
