#include "Engine/ForceReplay.h"

#include <gtest/gtest.h>

#include <string>

#include "Support/ImpactTrace.h"

namespace tobrin {
namespace {

using testing::Impact;
using testing::millisecond;
using testing::traceOf;

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

TEST(ForceReplay, ASensitiveOneTakesAStrokeForAHarderOne) {
  const auto relative = [](float sensitivity) {
    const MotionTrace trace = traceOf(6000, {{4990, 0.02}});
    return replayForce(trace, {{{5000 * millisecond, 0}}}, sensitivity).back().stage.relative;
  };
  EXPECT_FLOAT_EQ(relative(1.7F), 1.7F * relative(1));
}

TEST(ForceReplay, CountsWhatStandsOutFromTheNoise) {
  int counted = 0;
  for (int i = 0; i < 20; ++i) {
    MotionTrace trace = traceOf(6000, {{4990, 0.001 + 0.0005 * i}});
    for (std::size_t n = 0; n < trace.samples.size(); ++n)
      trace.samples[n].acceleration.z += n % 2 == 0 ? 0.002 : -0.002;
    const auto last = replayForce(trace, {{{5000 * millisecond, 0}}}, 1).back().stage;
    EXPECT_EQ(last.counted, last.window->peak > 3 * last.noise) << last.window->peak;
    counted += last.counted ? 1 : 0;
  }
  EXPECT_NEAR(counted, 10, 8) << "some do, and some do not";
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
