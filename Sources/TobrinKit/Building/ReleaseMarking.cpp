#include "Building/ReleaseMarking.h"

#include <algorithm>
#include <cmath>

#include "Building/TypingModel.h"

namespace tobrin {
namespace {

constexpr double neighbourhoodSeconds = 2.0;  // that the level of a hit is judged against
constexpr double pressPercentile = 0.75;      // among hits of which up to a half are releases
constexpr double leastSeparationDb = 2.5;
constexpr double leastGainPerHit = 0.05;  // log likelihood, over a recording without releases
/// A press that is lost costs a pack more than a release that passes for a press.
constexpr double doubt = 4;
constexpr int rounds = 10;
constexpr double quietest = 1e-9;

/// The level that presses around hit `index` have, in dB.
double pressLevelAround(const std::vector<TypedHit>& hits, const std::vector<double>& levels,
                        std::size_t index) {
  constexpr std::size_t fewest = 6;  // to each side, however slow the typing
  const auto isNear = [&](std::size_t i) {
    const std::size_t apart = i > index ? i - index : index - i;
    return apart <= fewest || std::abs(hits[i].time - hits[index].time) <= neighbourhoodSeconds;
  };
  std::vector<float> around;
  for (std::size_t i = index; i < hits.size() && isNear(i); ++i) {
    around.push_back(static_cast<float>(levels[i]));
  }
  for (std::size_t i = index; i-- > 0 && isNear(i);)
    around.push_back(static_cast<float>(levels[i]));
  return static_cast<double>(RecordingSlicer::percentile(std::move(around), pressPercentile));
}

std::vector<TypedHit> typed(const std::vector<RecordingSlicer::Hit>& hits, double rate) {
  std::vector<TypedHit> result;
  std::vector<double> levels;
  for (const auto& hit : hits) {
    result.push_back({static_cast<double>(hit.onset) / rate, 0});
    levels.push_back(20 * std::log10(std::max(static_cast<double>(hit.energy), quietest)));
  }
  for (std::size_t i = 0; i < result.size(); ++i) {
    result[i].relativeDb = levels[i] - pressLevelAround(result, levels, i);
  }
  return result;
}

/// The log likelihood of a reading without any release, with the model that fits it.
double scoreWithoutReleases(const std::vector<TypedHit>& hits) {
  const TypingModel::Assignment allPresses(hits.size(), TypingModel::isPress);
  TypingModel model = TypingModel().fitted(hits, allPresses);
  model.heardReleases = 1e-9;  // no reading with releases can win
  return model.read(hits).score;
}

}  // namespace

void ReleaseMarking::mark(std::vector<RecordingSlicer::Hit>& hits, double rate) {
  for (auto& hit : hits)
    hit.isRelease = false;
  if (hits.size() < 2) return;
  const auto typedHits = typed(hits, rate);
  TypingModel model;
  TypingModel::Reading reading = model.read(typedHits);
  for (int round = 0; round < rounds; ++round) {
    model = model.fitted(typedHits, reading.assignment);
    auto next = model.read(typedHits);
    const bool settled = next.assignment == reading.assignment;
    reading = std::move(next);
    if (settled) break;
  }
  const double gain = reading.score - scoreWithoutReleases(typedHits);
  const bool isWorthIt = gain > leastGainPerHit * static_cast<double>(hits.size());
  if (!isWorthIt || model.pressDb.mean - model.releaseDb.mean < leastSeparationDb) return;
  const auto sure = model.read(typedHits, doubt);
  for (std::size_t i = 0; i < hits.size(); ++i) {
    hits[i].isRelease = sure.assignment[i] != TypingModel::isPress;
  }
}

}  // namespace tobrin
