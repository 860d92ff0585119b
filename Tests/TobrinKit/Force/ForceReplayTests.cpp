#include "Force/ForceReplay.h"

#include <gtest/gtest.h>

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

std::vector<ForceStage> stagesOfOneKey(const std::vector<Impact>& impacts, float sensitivity = 1) {
  std::vector<ForceStage> stages;
  const KeyTrace keys{{{5000 * millisecond, 0}}};
  for (const ReplayedStage& replayed : replayForce(traceOf(6000, impacts), keys, sensitivity))
    stages.push_back(replayed.stage);
  return stages;
}

TEST(ForceReplay, TheWindowGoesFromTwelveBeforeToFourteenAfter) {
  struct {
    const char* label;
    Impact impact;
    std::vector<bool> counted;  // provisional, 4, 10 and 16 ms
  } const rows[] = {
      {"long before", {4987, 0.028}, {false, false, false, false}},
      {"first of the window", {4988, 0.028}, {true, true, true, true}},
      {"at the key", {5000, 0.028}, {true, true, true, true}},
      {"soon after", {5003, 0.028}, {false, true, true, true}},
      {"last of the window", {5014, 0.028}, {false, false, false, true}},
      {"too late", {5015, 0.028}, {false, false, false, false}},
      {"weak: no start from it", {4990, 0.008}, {false, true, true, true}},
      {"no impact at all", {4990, 0.0014}, {false, false, false, false}},
  };
  for (const auto& row : rows) {
    const auto stages = stagesOfOneKey({row.impact});
    ASSERT_EQ(stages.size(), 4u) << row.label;
    for (std::size_t i = 0; i < stages.size(); ++i) {
      EXPECT_EQ(stages[i].counted, row.counted[i]) << row.label << " stage " << i;
      if (stages[i].counted)
        EXPECT_NEAR(static_cast<double>(stages[i].window->peak), row.impact.g, 2e-4) << row.label;
      else
        EXPECT_EQ(stages[i].relative, 1) << row.label;
    }
    const float settled = row.counted[3] ? 1 + 0.1f * (stages[3].position - 1) : 1;
    EXPECT_EQ(stages[2].typicalAfter, 1) << row.label << ": only the last stage teaches";
    EXPECT_FLOAT_EQ(stages[3].typicalAfter, settled) << row.label;
  }
}

TEST(ForceReplay, SensitivityScalesAndASecondImpactTakesOver) {
  const auto stages = stagesOfOneKey({{4995, 0.02}, {5008, 0.04}}, 2);
  EXPECT_NEAR(static_cast<double>(stages[1].relative), 2, 0.05);
  EXPECT_NEAR(static_cast<double>(stages[2].relative), 4, 0.2);
  EXPECT_EQ(stages[2].window->peakTime, 5008 * millisecond);
}

TEST(ForceReplay, TheTwelfthImpactCalibrates) {
  KeyTrace keys;
  std::vector<Impact> impacts;
  for (uint64_t i = 0; i < 13; ++i) {
    impacts.push_back({1000 + 400 * i, 0.06});
    keys.keys.push_back({(1000 + 400 * i) * millisecond, static_cast<uint16_t>(i)});
  }
  for (const auto& [key, stage] : replayForce(traceOf(7000, impacts), keys, 1)) {
    const bool adapted = key > 11 || (key == 11 && stage.delayMs == 16);
    EXPECT_NEAR(static_cast<double>(stage.referenceAfter), adapted ? 0.06 : 0.02, 1e-3) << key;
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
