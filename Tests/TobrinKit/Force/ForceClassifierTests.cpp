#include "Force/ForceClassifier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tobrin {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(ForceClassifier, StrengthIsCountedFromTheNoiseFloor) {
  // Sensitivity, peak, noise, relative strength.
  const std::array<float, 4> rows[] = {
      {1, 0.02f, 0.001f, 1}, {1, 0.0385f, 0.001f, 2},   {1, 0.001f, 0.001f, 0},
      {2, 0.02f, 0.001f, 2}, {0, 0.02f, 0.001f, 0.05f}, {nan, 0.02f, 0.001f, 0.05f},
      {1, nan, 0.001f, 0},   {1, 0.07501f, 0.05f, 1},
  };
  for (const auto& [sensitivity, peak, noise, expected] : rows) {
    ForceClassifier classifier;
    classifier.sensitivity = sensitivity;
    EXPECT_NEAR(classifier.relative(peak, noise), expected, 2e-3f) << sensitivity << " " << peak;
  }
}

TEST(ForceClassifier, PositionIsLinearInTheLogarithmAndEdgeGainActsOutsideTheTiersOnly) {
  // Relative strength, position, edge gain.
  const std::array<float, 3> rows[] = {{-1, 0, 0.45f},
                                       {0.1f, 0, 0.5f},
                                       {0.4f, 0, 1},
                                       {std::sqrt(0.4f), 0.5f, 1},
                                       {1, 1, 1},
                                       {2.2f, 2, 1},
                                       {4, 3, 1},
                                       {100, 3, 1.25f},
                                       {std::sqrt(2.2f * 4), 2.5f, 1},
                                       {nan, 0, 1},
                                       {infinity, 3, 1.25f},
                                       {5, 3, std::pow(1.25f, 0.25f)}};
  for (const auto& [relative, position, gain] : rows) {
    EXPECT_NEAR(ForceClassifier::tierPosition(relative), position, 1e-5f) << relative;
    EXPECT_NEAR(ForceClassifier::edgeGain(relative), gain, 1e-6f) << relative;
  }
}

TEST(ForceClassifier, ReferenceIsTheBoundedMedianOfTheNewestPeaks) {
  ForceClassifier classifier;
  for (const float unusable : {0.0f, -1.0f, infinity, nan})
    for (int i = 0; i < 20; ++i)
      classifier.record(unusable);
  for (int i = 0; i < 11; ++i)
    classifier.record(0.03f + 0.001f * static_cast<float>(i));
  EXPECT_EQ(classifier.reference(), ForceClassifier::defaultReference) << "too few peaks";
  classifier.record(0.041f);
  EXPECT_FLOAT_EQ(classifier.reference(), 0.036f) << "the upper middle of twelve";
  for (int i = 0; i < 96; ++i)
    classifier.record(0.5f);
  EXPECT_FLOAT_EQ(classifier.reference(), 0.08f) << "at most four times the base";
  for (int i = 0; i < 48; ++i)
    classifier.record(0.001f);
  EXPECT_FLOAT_EQ(classifier.reference(), 0.08f) << "48 of 96 are still hard";
  classifier.record(0.001f);
  EXPECT_FLOAT_EQ(classifier.reference(), 0.005f) << "the oldest went, at least a quarter";
  classifier.reset();
  classifier.record(0.05f);
  EXPECT_EQ(classifier.reference(), ForceClassifier::defaultReference) << "history is gone";
}

}  // namespace
}  // namespace tobrin
