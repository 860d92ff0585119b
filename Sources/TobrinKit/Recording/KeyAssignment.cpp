#include "Recording/KeyAssignment.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Building/RecordingSlicer.h"

namespace tobrin {
namespace {

constexpr double leastReach = 0.006;  // s around the expected moment
constexpr double mostReach = 0.020;
constexpr double reachSpreads = 4.5;
constexpr double enoughEvidence = 60;
constexpr double evidenceWorth = 0.1;  // against half the square of the error in spreads
constexpr double mostLevelCost = 6;
constexpr double leastSpreadDb = 4;
constexpr double clearlyCheaper = 4;  // in cost: the dearer one is 50 times less likely
constexpr float partDb = 6;
constexpr double separateSeconds = 0.020;

/// A key and a rise that may be its sound.
struct Pair {
  std::size_t key = 0;
  std::size_t rise = 0;
  double cost = 0;
};

/// How loud the sounds of one action usually are: the median and the spread of their levels in dB.
struct UsualLevel {
  double median = 0;
  double spread = 0;  // 0 while it is not known
};

class Assignment {
 public:
  Assignment(std::span<const SoundRise> rises, std::span<const RecordedKey> keys,
             const ClockFit& fit, double rate)
      : rises_(rises), keys_(keys), fit_(fit), rate_(rate) {}

  std::vector<AssignedRise> made() {
    assign();
    // Once more with the levels in mind: a press and a release may be expected at one moment.
    usual_ = {usualLevel(KeyAction::down), usualLevel(KeyAction::up)};
    assign();
    for (const Pair& pair : pairs_)
      doubt(pair);
    for (std::size_t rise = 0; rise < rises_.size(); ++rise)
      separate(rise);
    return std::move(result_);
  }

 private:
  double secondsOf(std::size_t rise) const {
    return static_cast<double>(rises_[rise].sample) / rate_;
  }

  void assign() {
    result_.assign(keys_.size(), {});
    owners_.assign(rises_.size(), std::nullopt);
    pairs_.clear();
    for (std::size_t key = 0; key < keys_.size(); ++key)
      addPairs(key);
    std::stable_sort(pairs_.begin(), pairs_.end(),
                     [](const Pair& a, const Pair& b) { return a.cost < b.cost; });
    for (const Pair& pair : pairs_)
      give(pair);
  }

  UsualLevel usualLevel(KeyAction action) const {
    std::vector<float> levels;
    for (std::size_t key = 0; key < keys_.size(); ++key) {
      if (keys_[key].action == action && result_[key].rise)
        levels.push_back(rises_[*result_[key].rise].levelDb);
    }
    const float median = percentile(levels, 0.5);
    for (float& level : levels)
      level = std::abs(level - median);
    const double spread = 1.5 * static_cast<double>(percentile(levels, 0.5));
    return {static_cast<double>(median), levels.empty() ? 0.0 : std::max(spread, leastSpreadDb)};
  }

  double costOf(const RecordedKey& key, const SoundRise& rise, double error) const {
    const double spreads = error / fit_.spread;
    const double evidence = std::min(static_cast<double>(rise.evidence), enoughEvidence);
    const UsualLevel& usual = usual_[key.action == KeyAction::down ? 0 : 1];
    const double away =
        usual.spread > 0 ? (static_cast<double>(rise.levelDb) - usual.median) / usual.spread : 0;
    return spreads * spreads / 2 + std::min(away * away / 2, mostLevelCost) -
           evidenceWorth * evidence;
  }

  void addPairs(std::size_t key) {
    const double expected = fit_.soundOf(keys_[key]);
    const double reach = std::clamp(reachSpreads * fit_.spread, leastReach, mostReach);
    const auto first = std::lower_bound(
        rises_.begin(), rises_.end(), (expected - reach) * rate_,
        [](const SoundRise& rise, double s) { return static_cast<double>(rise.sample) < s; });
    for (auto rise = static_cast<std::size_t>(first - rises_.begin());
         rise < rises_.size() && secondsOf(rise) <= expected + reach; ++rise) {
      pairs_.push_back({key, rise, costOf(keys_[key], rises_[rise], secondsOf(rise) - expected)});
    }
  }

  void give(const Pair& pair) {
    if (result_[pair.key].rise || owners_[pair.rise]) return;
    result_[pair.key].rise = pair.rise;
    owners_[pair.rise] = pair.key;
  }

  bool isKept(std::size_t rise) const {
    return owners_[rise] && !result_[*owners_[rise]].isDoubtful;
  }

  /// A key that was left without a sound may be the one that made its neighbour's.
  void doubt(const Pair& pair) {
    const auto owner = owners_[pair.rise];
    if (!isKept(pair.rise) || result_[pair.key].rise) return;
    const double error = secondsOf(pair.rise) - fit_.soundOf(keys_[*owner]);
    if (pair.cost > costOf(keys_[*owner], rises_[pair.rise], error) + clearlyCheaper) return;
    result_[pair.key].isDoubtful = true;
    result_[*owner].isDoubtful = true;
  }

  /// Of two sounds that begin almost at once one may be part of the other: the weaker one. Where
  /// they are about as loud, neither is sure.
  void separate(std::size_t rise) {
    for (std::size_t before = rise; before-- > 0;) {
      if (secondsOf(rise) - secondsOf(before) > separateSeconds) return;
      if (!owners_[rise] || !owners_[before]) continue;
      const float louder = rises_[rise].levelDb - rises_[before].levelDb;
      if (louder < partDb) result_[*owners_[rise]].isDoubtful = true;
      if (louder > -partDb) result_[*owners_[before]].isDoubtful = true;
    }
  }

  std::span<const SoundRise> rises_;
  std::span<const RecordedKey> keys_;
  const ClockFit& fit_;
  double rate_;
  std::array<UsualLevel, 2> usual_;  // of presses, of releases
  std::vector<AssignedRise> result_;
  std::vector<Pair> pairs_;
  std::vector<std::optional<std::size_t>> owners_;  // of rises
};

}  // namespace

std::vector<AssignedRise> assignRises(std::span<const SoundRise> rises,
                                      std::span<const RecordedKey> keys, const ClockFit& fit,
                                      double rate) {
  if (!fit.isKnown) return std::vector<AssignedRise>(keys.size());
  return Assignment(rises, keys, fit, rate).made();
}

}  // namespace tobrin
