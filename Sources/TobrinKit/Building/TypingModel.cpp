#include "Building/TypingModel.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace tobrin {
namespace {

constexpr double expectedWeight = 8;  // in hits
// Strays come at any time: left alone, they would explain slow typing as well as keys do.
constexpr double mostStrays = 0.15;     // of all hits
constexpr double loudestStrayDb = -10;  // on average
constexpr double leastStrayDb = 5;      // deviation

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// A share counted on a recording, drawn towards the one expected.
double share(std::size_t count, std::size_t of, double expected) {
  return (static_cast<double>(count) + expectedWeight * expected) /
         (static_cast<double>(of) + expectedWeight);
}

}  // namespace

double Bell::logDensity(double x) const {
  constexpr double freedom = 5;
  constexpr double logScale = -0.9686;  // log of gamma(3) / (gamma(5 / 2) sqrt(5 pi))
  assert(deviation > 0);
  const double z = (x - mean) / deviation;
  return logScale - (freedom + 1) / 2 * std::log1p(z * z / freedom) - std::log(deviation);
}

Bell Bell::fit(std::vector<double> values, const Bell& expected, double weight,
               double leastDeviation) {
  constexpr double toDeviation = 1.4826;  // of the median absolute deviation of a normal
  if (values.empty()) return expected;
  const auto count = static_cast<double>(values.size());
  const double middle = median(values);
  for (double& value : values)
    value = std::abs(value - middle);
  const double spread = median(values) * toDeviation;
  const auto drawn = [&](double found, double before) {
    return (count * found + weight * before) / (count + weight);
  };
  return {drawn(middle, expected.mean),
          std::max(drawn(spread, expected.deviation), leastDeviation)};
}

TypingModel TypingModel::fitted(const std::vector<TypedHit>& hits,
                                const Assignment& assignment) const {
  assert(assignment.size() == hits.size());
  std::vector<double> pressLevels, releaseLevels, strayLevels, holds, intervals;
  double lastPress = -longestInterval;
  std::size_t beside = 0, parts = 0;
  for (std::size_t i = 0; i < hits.size(); ++i) {
    beside += hits[i].isBeside ? 1u : 0u;
    if (assignment[i] == isStray && hits[i].isBeside) {
      ++parts;
      continue;
    }
    if (assignment[i] == isStray) {
      strayLevels.push_back(hits[i].relativeDb);
      continue;
    }
    if (assignment[i] != isPress) {
      releaseLevels.push_back(hits[i].relativeDb);
      holds.push_back(std::log(hits[i].time - hits[static_cast<std::size_t>(assignment[i])].time));
      continue;
    }
    pressLevels.push_back(hits[i].relativeDb);
    const double interval = hits[i].time - lastPress;
    if (interval < longestInterval) intervals.push_back(std::log(std::max(interval, 1e-3)));
    lastPress = hits[i].time;
  }
  constexpr double leastDb = 2;
  constexpr double leastLog = 0.15;
  TypingModel model;
  const double length = hits.empty() ? 1 : std::max(1.0, hits.back().time - hits.front().time);
  const auto count = static_cast<double>(hits.size());
  model.straysASecond = std::clamp(static_cast<double>(strayLevels.size()) / length, 0.05,
                                   std::max(mostStrays * count / length, 0.05));
  model.heardReleases =
      std::clamp(share(releaseLevels.size(), pressLevels.size(), heardReleases), 0.02, 0.98);
  model.partsBeside = std::clamp(share(parts, beside, partsBeside), 0.02, 0.98);
  model.pressDb = Bell::fit(std::move(pressLevels), pressDb, expectedWeight, leastDb);
  model.releaseDb = Bell::fit(std::move(releaseLevels), releaseDb, expectedWeight, leastDb);
  model.strayDb = Bell::fit(std::move(strayLevels), strayDb, expectedWeight, leastStrayDb);
  model.strayDb.mean = std::min(model.strayDb.mean, loudestStrayDb);
  model.logHold = Bell::fit(std::move(holds), logHold, expectedWeight, leastLog);
  model.logInterval = Bell::fit(std::move(intervals), logInterval, expectedWeight, leastLog);
  return model;
}

}  // namespace tobrin
