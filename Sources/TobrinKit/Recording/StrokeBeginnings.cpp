#include "Recording/StrokeBeginnings.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tobrin {
namespace {

constexpr double longestLead = 0.025;  // s
constexpr double leadTolerance = 0.0015;
constexpr std::size_t leadBins = 25;  // of 1 ms
constexpr std::size_t shortestLead = 3;
constexpr double usualShare = 0.3;   // of presses: then the lead is the keyboard's
constexpr double steadyShare = 0.6;  // then even presses that hide it have it
constexpr float clearEvidence = 60;  // of a beginning without the keyboard's lead
constexpr double echoSeconds = 0.030;

struct Lead {
  double seconds = 0;
  double share = 0;  // of presses that show it
};

class Beginnings {
 public:
  Beginnings(std::span<const SoundRise> rises, std::span<const RecordedKey> keys,
             std::span<const AssignedRise> assigned, double rate)
      : rises_(rises), keys_(keys), assigned_(assigned), rate_(rate), isOwned_(rises.size()) {
    for (const AssignedRise& each : assigned)
      if (each.rise) isOwned_[*each.rise] = true;
    lead_ = usualLead();
  }

  std::optional<std::size_t> of(std::size_t key) const {
    const AssignedRise& each = assigned_[key];
    if (!each.rise || each.isDoubtful) return std::nullopt;
    if (keys_[key].action == KeyAction::up) return rises_[*each.rise].sample;
    return lead_.share >= usualShare ? byTrait(*each.rise) : byEvidence(*each.rise);
  }

 private:
  double secondsOf(std::size_t rise) const {
    return static_cast<double>(rises_[rise].sample) / rate_;
  }

  /// A rise of no key `seconds` after the given one, or before it where that is negative.
  std::optional<std::size_t> freeRiseAt(std::size_t from, double seconds) const {
    const double at = secondsOf(from) + seconds;
    const auto first = std::lower_bound(
        rises_.begin(), rises_.end(), (at - leadTolerance) * rate_,
        [](const SoundRise& rise, double s) { return static_cast<double>(rise.sample) < s; });
    for (auto rise = static_cast<std::size_t>(first - rises_.begin());
         rise < rises_.size() && secondsOf(rise) <= at + leadTolerance; ++rise) {
      if (!isOwned_[rise]) return rise;
    }
    return std::nullopt;
  }

  Lead usualLead() const {
    std::array<std::size_t, leadBins + 1> counts{};
    std::size_t presses = 0;
    for (std::size_t key = 0; key < keys_.size(); ++key) {
      if (keys_[key].action != KeyAction::down || !assigned_[key].rise) continue;
      ++presses;
      for (std::size_t bin = shortestLead; bin < leadBins; ++bin)
        counts[bin] +=
            freeRiseAt(*assigned_[key].rise, -0.001 * static_cast<double>(bin)) ? 1u : 0u;
    }
    const auto best = std::max_element(counts.begin(), counts.end());
    const auto bin = static_cast<std::size_t>(best - counts.begin());
    return {meanLead(0.001 * static_cast<double>(bin)),
            static_cast<double>(*best) / static_cast<double>(std::max<std::size_t>(presses, 1))};
  }

  double meanLead(double about) const {
    double sum = 0, count = 0;
    for (std::size_t key = 0; key < keys_.size(); ++key) {
      if (keys_[key].action != KeyAction::down || !assigned_[key].rise) continue;
      const auto rise = freeRiseAt(*assigned_[key].rise, -about);
      if (!rise) continue;
      sum += secondsOf(*assigned_[key].rise) - secondsOf(*rise);
      ++count;
    }
    return count > 0 ? sum / count : 0;
  }

  std::size_t byTrait(std::size_t strike) const {
    if (const auto rise = freeRiseAt(strike, -lead_.seconds)) return rises_[*rise].sample;
    const std::size_t sample = rises_[strike].sample;
    // Where the strike follows, this is the begin already.
    const bool isBegin = freeRiseAt(strike, lead_.seconds).has_value();
    const auto lead = static_cast<std::size_t>(lead_.seconds * rate_);
    return isBegin || lead_.share < steadyShare || lead > sample ? sample : sample - lead;
  }

  std::size_t byEvidence(std::size_t strike) const {
    std::size_t result = strike;
    for (std::size_t rise = strike; rise-- > 0;) {
      if (secondsOf(strike) - secondsOf(rise) > longestLead || isOwned_[rise]) break;
      if (rises_[rise].evidence >= clearEvidence && !isEcho(rise)) result = rise;
    }
    return rises_[result].sample;
  }

  /// Whether a key's sound shortly before may have caused the rise.
  bool isEcho(std::size_t rise) const {
    for (std::size_t before = rise; before-- > 0;) {
      if (secondsOf(rise) - secondsOf(before) > echoSeconds) return false;
      if (isOwned_[before]) return true;
    }
    return false;
  }

  std::span<const SoundRise> rises_;
  std::span<const RecordedKey> keys_;
  std::span<const AssignedRise> assigned_;
  double rate_;
  std::vector<bool> isOwned_;  // of rises: by a key
  Lead lead_;
};

}  // namespace

std::vector<std::optional<std::size_t>> strokeBeginnings(std::span<const SoundRise> rises,
                                                         std::span<const RecordedKey> keys,
                                                         std::span<const AssignedRise> assigned,
                                                         double rate) {
  const Beginnings beginnings(rises, keys, assigned, rate);
  std::vector<std::optional<std::size_t>> result;
  for (std::size_t key = 0; key < keys.size(); ++key)
    result.push_back(beginnings.of(key));
  return result;
}

}  // namespace tobrin
