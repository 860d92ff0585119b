#include "KeyedScore.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tobrin {
namespace {

constexpr double foundWithinMs = 10;
constexpr double sameSoundMs = 5;

class Scorer {
 public:
  Scorer(const ComposedKeys& composed, const KeyedTakes& takes)
      : composed_(composed), takes_(takes) {}

  KeyedScore score() {
    for (std::size_t key = 0; key < composed_.truths.size(); ++key)
      add(key);
    score_.presses /= std::max(separable_[0], 1.0);
    score_.releases /= std::max(separable_[1], 1.0);
    std::sort(errors_.begin(), errors_.end());
    if (!errors_.empty()) score_.onsetErrorMs = errors_[errors_.size() * 95 / 100];
    return score_;
  }

 private:
  double msFrom(std::size_t key, std::size_t sample) const {
    const auto& onset = composed_.truths[key].onset;
    if (!onset) return 1e9;
    return 1000 * std::abs(static_cast<double>(sample) - static_cast<double>(*onset)) /
           composed_.recording.rate;
  }

  void add(std::size_t key) {
    const bool isRelease = composed_.recording.keys[key].action == KeyAction::up;
    const bool isSeparable = composed_.truths[key].isSeparable;
    if (isSeparable) ++separable_[isRelease ? 1 : 0];
    const KeyEventSound& sound = takes_.sounds[key];
    if (sound.hit.peak <= 0) return;
    const double error = msFrom(key, sound.hit.onset);
    if (isSeparable && error < foundWithinMs) {
      ++(isRelease ? score_.releases : score_.presses);
      errors_.push_back(error);
    }
    if (error > foundWithinMs && isAnothers(key, sound.hit.onset)) ++score_.wrong;
    if (sound.fate != KeyFate::good) return;
    ++score_.good;
    if (error > foundWithinMs || holdsKnock(sound.hit.onset)) ++score_.spoiled;
  }

  bool isAnothers(std::size_t key, std::size_t onset) const {
    for (std::size_t other = 0; other < composed_.truths.size(); ++other) {
      if (other != key && msFrom(other, onset) < sameSoundMs) return true;
    }
    return false;
  }

  /// Whether a knock begins in what is cut at least: the next sound ends a take.
  bool holdsKnock(std::size_t onset) const {
    const auto shortest = static_cast<std::size_t>(0.020 * composed_.recording.rate);
    return std::any_of(composed_.knocks.begin(), composed_.knocks.end(), [&](std::size_t knock) {
      return knock + shortest > onset && knock < onset + shortest;
    });
  }

  const ComposedKeys& composed_;
  const KeyedTakes& takes_;
  KeyedScore score_;
  double separable_[2] = {0, 0};  // presses, releases
  std::vector<double> errors_;
};

}  // namespace

KeyedScore scoreOf(const ComposedKeys& composed, const KeyedTakes& takes) {
  return Scorer(composed, takes).score();
}

}  // namespace tobrin
