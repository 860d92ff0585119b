#include "Recording/KeySounds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "Building/HitFeatures.h"
#include "Recording/StrokeBeginnings.h"
#include "Recording/TierCounts.h"

namespace tobrin {
namespace {

// How much may sound before, against the sound itself. A release comes soon after its press.
constexpr float busyBeforePress = 0.25f;
constexpr float busyBeforeRelease = 0.5f;
constexpr float noisePeaks = 3.5f;  // of the noise in the few milliseconds before, to its level
constexpr double shortestReleaseMs = 20;
constexpr float strangerEvidence = 40;
constexpr float strangerDb = -15;  // against the usual press: fainter ones are let through
constexpr float echoDb = 3;        // an echo is that much weaker than what it comes from
constexpr double echoSeconds = 0.060;
constexpr double earlySeconds = 0.025;
constexpr float unlikelyLoud = 5;  // times the usual energy: a knock came with it
constexpr double nearSeconds = 0.300;
constexpr std::ptrdiff_t tooManyNear = 3;  // so many in speech; a door or a cup makes fewer
constexpr double before = 0.120;           // s in which a stranger's sound may still ring

/// A place in the recording where a sound begins, and whose it is.
struct Beginning {
  std::size_t sample = 0;
  std::optional<std::size_t> key;  // nothing for a stranger's
};

class SoundJudge {
 public:
  SoundJudge(std::span<const float> mono, double rate, const SoundRises& rises,
             std::span<const RecordedKey> keys, const SlicerOptions& options)
      : mono_(mono), rate_(rate), rises_(rises), keys_(keys), options_(options) {}

  std::vector<KeyEventSound> judged(const ClockFit& fit) {
    const auto assigned = assignRises(rises_.rises, keys_, fit, rate_);
    const auto onsets = strokeBeginnings(rises_.rises, keys_, assigned, rate_);
    addKeys(assigned, onsets);
    addStrangers(assigned);
    measure();
    std::vector<KeyEventSound> sounds(keys_.size());
    for (std::size_t key = 0; key < keys_.size(); ++key) {
      if (assigned[key].isDoubtful) sounds[key].fate = KeyFate::overlapping;
    }
    for (std::size_t i = 0; i < beginnings_.size(); ++i) {
      const auto key = beginnings_[i].key;
      if (key && onsets[*key]) sounds[*key] = {fateOf(i), hits_[i]};
    }
    return sounds;
  }

 private:
  std::size_t samples(double seconds) const { return static_cast<std::size_t>(seconds * rate_); }

  void addKeys(const std::vector<AssignedRise>& assigned,
               const std::vector<std::optional<std::size_t>>& onsets) {
    for (std::size_t key = 0; key < keys_.size(); ++key) {
      if (!assigned[key].rise) continue;
      beginnings_.push_back({onsets[key].value_or(rises_.rises[*assigned[key].rise].sample), key});
    }
    sortByTime(beginnings_);
  }

  static void sortByTime(std::vector<Beginning>& beginnings) {
    std::stable_sort(beginnings.begin(), beginnings.end(),
                     [](const Beginning& a, const Beginning& b) { return a.sample < b.sample; });
  }

  /// Rises of no key that are neither part of a key's sound nor much weaker than one.
  void addStrangers(const std::vector<AssignedRise>& assigned) {
    std::vector<bool> isOwned(rises_.rises.size());
    std::vector<float> levels;
    for (std::size_t key = 0; key < keys_.size(); ++key) {
      if (!assigned[key].rise) continue;
      isOwned[*assigned[key].rise] = true;
      if (keys_[key].action == KeyAction::down)
        levels.push_back(rises_.rises[*assigned[key].rise].levelDb);
    }
    const float least = percentile(std::move(levels), 0.5) + strangerDb;
    std::vector<Beginning> strangers;
    for (std::size_t rise = 0; rise < isOwned.size(); ++rise) {
      const SoundRise& each = rises_.rises[rise];
      if (isOwned[rise] || each.evidence < strangerEvidence || each.levelDb < least) continue;
      if (followsBeginning(each.sample) || isWeakBeside(rise, isOwned)) continue;
      strangers.push_back({each.sample, std::nullopt});
    }
    beginnings_.insert(beginnings_.end(), strangers.begin(), strangers.end());
    sortByTime(beginnings_);
  }

  /// Whether a sample lies where a key's sound, just begun, strikes or rattles.
  bool followsBeginning(std::size_t sample) const {
    const auto next = std::upper_bound(
        beginnings_.begin(), beginnings_.end(), sample,
        [](std::size_t s, const Beginning& beginning) { return s < beginning.sample; });
    return next != beginnings_.begin() && sample - (next - 1)->sample < samples(earlySeconds);
  }

  /// Whether the rise is an echo of a key's sound, or a touch ahead of it.
  bool isWeakBeside(std::size_t rise, const std::vector<bool>& isOwned) const {
    const auto& all = rises_.rises;
    const auto isLouder = [&](std::size_t other) {
      return isOwned[other] && all[other].levelDb > all[rise].levelDb + echoDb;
    };
    for (std::size_t i = rise; i-- > 0 && all[rise].sample - all[i].sample < samples(echoSeconds);)
      if (isLouder(i)) return true;
    for (std::size_t i = rise + 1;
         i < all.size() && all[i].sample - all[rise].sample < samples(earlySeconds); ++i)
      if (isLouder(i)) return true;
    return false;
  }

  void measure() {
    Onsets onsets;
    onsets.signal = rises_.signal;
    onsets.floor = rises_.floor;
    for (const Beginning& each : beginnings_)
      onsets.samples.push_back(each.sample);
    hits_ = measureHits({mono_, mono_, mono_, rate_}, onsets);
    for (std::size_t i = 0; i < hits_.size(); ++i) {
      if (!beginnings_[i].key) continue;
      const RecordedKey& key = keys_[*beginnings_[i].key];
      hits_[i].isRelease = key.action == KeyAction::up;
      hits_[i].isBig = isLarge(key.group);
    }
    usualEnergy_ = {usualEnergy(KeyAction::down), usualEnergy(KeyAction::up)};
  }

  float usualEnergy(KeyAction action) const {
    std::vector<float> energies;
    for (std::size_t i = 0; i < beginnings_.size(); ++i) {
      const auto key = beginnings_[i].key;
      if (key && keys_[*key].action == action) energies.push_back(hits_[i].energy);
    }
    return percentile(std::move(energies), 0.5);
  }

  KeyFate fateOf(std::size_t i) const {
    const RecordedHit& hit = hits_[i];
    const bool isPress = keys_[*beginnings_[i].key].action == KeyAction::down;
    if (hit.clipped) return KeyFate::clipped;
    const float most = unlikelyLoud * usualEnergy_[isPress ? 0 : 1];
    if (hit.energy > most || strangersNear(i) >= tooManyNear) return KeyFate::disturbed;
    const float noise = noisePeaks * rises_.floor / std::max(hit.peak, 1e-9f);
    if (hit.preActivity - noise >= (isPress ? busyBeforePress : busyBeforeRelease))
      return followsStranger(i) ? KeyFate::disturbed : KeyFate::overlapping;
    const double needed = isPress ? options_.minPressMs : shortestReleaseMs;
    if (hit.gapAfter < samples(needed / 1000)) {
      const bool isKey = i + 1 == beginnings_.size() || beginnings_[i + 1].key;
      return isKey ? KeyFate::crowded : KeyFate::disturbed;
    }
    return KeyFate::good;
  }

  std::ptrdiff_t strangersNear(std::size_t i) const {
    const std::size_t at = beginnings_[i].sample;
    return std::count_if(beginnings_.begin(), beginnings_.end(), [&](const Beginning& each) {
      const std::size_t distance = each.sample > at ? each.sample - at : at - each.sample;
      return !each.key && distance < samples(nearSeconds);
    });
  }

  bool followsStranger(std::size_t i) const {
    return i > 0 && !beginnings_[i - 1].key &&
           beginnings_[i].sample - beginnings_[i - 1].sample < samples(before);
  }

  std::span<const float> mono_;
  double rate_;
  const SoundRises& rises_;
  std::span<const RecordedKey> keys_;
  const SlicerOptions& options_;
  std::vector<Beginning> beginnings_;   // in order of time
  std::vector<RecordedHit> hits_;       // of `beginnings_`
  std::array<float, 2> usualEnergy_{};  // of presses, of releases
};

}  // namespace

std::string_view nameOf(KeyFate fate) {
  constexpr std::array<std::string_view, keyFateCount> names = {
      "good", "unheard", "overlapping", "crowded", "disturbed", "clipped"};
  return names[static_cast<std::size_t>(fate)];
}

std::vector<KeyEventSound> findKeySounds(std::span<const float> mono, double rate,
                                         const SoundRises& rises, std::span<const RecordedKey> keys,
                                         const ClockFit& fit, const SlicerOptions& options) {
  return SoundJudge(mono, rate, rises, keys, options).judged(fit);
}

}  // namespace tobrin
