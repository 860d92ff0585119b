#include "Building/TypingModel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tobrin {
namespace {

constexpr double shortestHold = 0.025;  // s
constexpr double longestHold = 0.40;
constexpr double longestInterval = 1.0;  // later presses say nothing about the typing speed
constexpr std::size_t beamWidth = 48;
constexpr std::size_t mostHeld = 4;
constexpr int none = -1;

/// One way to read the hits so far. Held keys are indices of their presses, oldest first.
struct Path {
  double score = 0;
  std::array<int, mostHeld> held{};
  std::size_t heldCount = 0;
  int lastPress = none;
  int parent = none;  // in the previous step's beam
  int meaning = TypingModel::isPress;

  [[nodiscard]] bool continuesAs(const Path& other) const {
    return lastPress == other.lastPress && heldCount == other.heldCount &&
           std::equal(held.begin(), held.begin() + static_cast<std::ptrdiff_t>(heldCount),
                      other.held.begin());
  }
  void letGo(std::size_t place) {
    std::copy(held.begin() + static_cast<std::ptrdiff_t>(place) + 1,
              held.begin() + static_cast<std::ptrdiff_t>(heldCount),
              held.begin() + static_cast<std::ptrdiff_t>(place));
    --heldCount;
  }
};

/// The density of a time whose logarithm is normal.
double logTimeDensity(const Normal& logTime, double seconds) {
  const double clamped = std::max(seconds, 1e-3);
  return logTime.logDensity(std::log(clamped)) - std::log(clamped);
}

/// Extends paths by one hit after the other.
class BeamSearch {
 public:
  BeamSearch(const TypingModel& model, const std::vector<TypedHit>& hits, double doubt)
      : model_(model),
        hits_(hits),
        logHeard_(std::log(model.heardReleases) - doubt),
        logUnheard_(std::log(1 - model.heardReleases)) {
    beam_.emplace_back();
  }

  TypingModel::Reading run() {
    for (std::size_t i = 0; i < hits_.size(); ++i)
      step(static_cast<int>(i));
    for (Path& path : beam_)
      path.score += static_cast<double>(path.heldCount) * logUnheard_;
    return trace(best());
  }

 private:
  const TypedHit& hit(int index) const { return hits_[static_cast<std::size_t>(index)]; }

  void step(int index) {
    std::vector<Path> next;
    for (std::size_t parent = 0; parent < beam_.size(); ++parent) {
      Path path = beam_[parent];
      path.parent = static_cast<int>(parent);
      forgetLongHeld(path, hit(index).time);
      extendByReleases(path, index, next);
      next.push_back(extendedByPress(path, index));
    }
    keepBest(next);
    history_.push_back(beam_);
  }

  /// A press whose release does not come was released unheard.
  void forgetLongHeld(Path& path, double now) const {
    while (path.heldCount > 0 && now - hit(path.held[0]).time > longestHold) {
      path.letGo(0);
      path.score += logUnheard_;
    }
  }

  Path extendedByPress(Path path, int index) const {
    const TypedHit& here = hit(index);
    path.score += model_.pressDb.logDensity(here.relativeDb);
    const double interval =
        path.lastPress == none ? longestInterval : here.time - hit(path.lastPress).time;
    path.score += logTimeDensity(model_.logInterval, std::min(interval, longestInterval));
    if (path.heldCount == mostHeld) {
      path.letGo(0);
      path.score += logUnheard_;
    }
    path.held[path.heldCount++] = index;
    path.lastPress = index;
    path.meaning = TypingModel::isPress;
    return path;
  }

  void extendByReleases(const Path& path, int index, std::vector<Path>& next) const {
    const TypedHit& here = hit(index);
    for (std::size_t place = 0; place < path.heldCount; ++place) {
      const double hold = here.time - hit(path.held[place]).time;
      if (hold < shortestHold) continue;
      Path released = path;
      released.meaning = path.held[place];
      released.score += logHeard_ + model_.releaseDb.logDensity(here.relativeDb) +
                        logTimeDensity(model_.logHold, hold);
      released.letGo(place);
      next.push_back(released);
    }
  }

  /// Keeps the best of those that continue alike, and of the rest the best few.
  void keepBest(std::vector<Path>& next) {
    std::stable_sort(next.begin(), next.end(),
                     [](const Path& a, const Path& b) { return a.score > b.score; });
    beam_.clear();
    for (const Path& path : next) {
      const bool known = std::any_of(beam_.begin(), beam_.end(),
                                     [&](const Path& kept) { return kept.continuesAs(path); });
      if (!known) beam_.push_back(path);
      if (beam_.size() == beamWidth) return;
    }
  }

  int best() const {
    const auto found = std::max_element(
        beam_.begin(), beam_.end(), [](const Path& a, const Path& b) { return a.score < b.score; });
    return static_cast<int>(found - beam_.begin());
  }

  TypingModel::Reading trace(int last) const {
    TypingModel::Reading reading;
    reading.score = beam_[static_cast<std::size_t>(last)].score;
    reading.assignment.resize(hits_.size());
    for (std::size_t i = hits_.size(); i-- > 0;) {
      const Path& path = history_[i][static_cast<std::size_t>(last)];
      reading.assignment[i] = path.meaning;
      last = path.parent;
    }
    return reading;
  }

  const TypingModel& model_;
  const std::vector<TypedHit>& hits_;
  double logHeard_;
  double logUnheard_;
  std::vector<Path> beam_;
  std::vector<std::vector<Path>> history_;
};

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

double Normal::logDensity(double x) const {
  const double z = (x - mean) / deviation;
  return -0.5 * z * z - std::log(deviation) - 0.5 * std::log(2 * std::numbers::pi);
}

Normal Normal::fit(std::vector<double> values, const Normal& fallback, double leastDeviation) {
  constexpr std::size_t fewest = 5;
  constexpr double toDeviation = 1.4826;  // of the median absolute deviation of a normal
  if (values.size() < fewest) return fallback;
  const double mean = median(values);
  for (double& value : values)
    value = std::abs(value - mean);
  return {mean, std::max(median(values) * toDeviation, leastDeviation)};
}

TypingModel::Reading TypingModel::read(const std::vector<TypedHit>& hits, double doubt) const {
  return BeamSearch(*this, hits, doubt).run();
}

TypingModel TypingModel::fitted(const std::vector<TypedHit>& hits,
                                const Assignment& assignment) const {
  std::vector<double> pressLevels, releaseLevels, holds, intervals;
  double lastPress = -longestInterval;
  for (std::size_t i = 0; i < hits.size(); ++i) {
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
  constexpr double leastDb = 1.5;
  constexpr double leastLog = 0.15;
  TypingModel model;
  model.pressDb = Normal::fit(pressLevels, pressDb, leastDb);
  model.releaseDb = Normal::fit(releaseLevels, releaseDb, leastDb);
  model.logHold = Normal::fit(holds, logHold, leastLog);
  model.logInterval = Normal::fit(intervals, logInterval, leastLog);
  const auto presses = static_cast<double>(std::max<std::size_t>(pressLevels.size(), 1));
  model.heardReleases = std::clamp(static_cast<double>(releaseLevels.size()) / presses, 0.02, 0.98);
  return model;
}

}  // namespace tobrin
