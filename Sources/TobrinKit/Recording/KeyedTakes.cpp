#include "Recording/KeyedTakes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <span>

#include "Building/TakeCutter.h"
#include "Building/TierAssignment.h"
#include "Recording/NoiseRemoval.h"
#include "Recording/TierCounts.h"

namespace tobrin {
namespace {

using Takes = std::vector<RecordedTake>;

constexpr double shortestReleaseMs = 20;
constexpr float mostGroupFactor = 2;  // of a group's loudness against the letters'

/// A release that may be cut.
struct GoodRelease {
  RecordedHit hit;
  float pressEnergy = 0;  // of its press; 0 where that is not known
};

class KeyedCutter {
 public:
  /// Cuts out of `samples`, which are the recording's or what is left of them without noise.
  KeyedCutter(const KeyedRecording& recording, std::span<const float> samples,
              const std::vector<KeyEventSound>& sounds, const SlicerOptions& options)
      : recording_(recording),
        sounds_(sounds),
        options_(options),
        cutter_({samples, samples, samples, recording.rate}, options) {}

  RecordedTiers presses(KeyGroup group) const {
    const CutTake cut = [&](const RecordedHit& hit) {
      return cutter_.cut(hit, isLarge(group) ? options_.maxBigPressMs : options_.maxPressMs,
                         options_.minPressMs);
    };
    const auto good = goodPresses(group);
    const auto variants = variantsOf(group, options_);
    if (haveForce(good)) return tiersByForce(good, variants, cut);
    std::vector<RecordedHit> hits;
    hits.reserve(good.size());
    for (const GoodPress& each : good)
      hits.push_back(each.hit);
    return takesByTier(std::move(hits), variants, cut);
  }

  /// Those whose press was most like the usual one come first: a release is played at the strength
  /// of its press.
  Takes releases(KeyGroup group) const {
    auto good = goodReleases(group);
    std::vector<float> energies;
    for (const GoodRelease& each : good)
      if (each.pressEnergy > 0) energies.push_back(each.pressEnergy);
    const float usual = percentile(std::move(energies), 0.5);
    const auto away = [&](const GoodRelease& each) {
      constexpr float unknown = 9;
      return each.pressEnergy > 0 ? std::abs(std::log(each.pressEnergy / usual)) : unknown;
    };
    std::stable_sort(good.begin(), good.end(),
                     [&](const GoodRelease& a, const GoodRelease& b) { return away(a) < away(b); });
    Takes takes;
    for (const GoodRelease& each : good) {
      if (std::ssize(takes) >= options_.releaseVariants) break;
      auto take = cutter_.cut(each.hit, options_.maxReleaseMs, shortestReleaseMs);
      if (take) takes.push_back(std::move(*take));
    }
    return takes;
  }

 private:
  bool isGood(std::size_t i, KeyGroup group, KeyAction action) const {
    const RecordedKey& key = recording_.keys[i];
    return key.group == group && key.action == action && sounds_[i].fate == KeyFate::good;
  }

  std::vector<GoodPress> goodPresses(KeyGroup group) const {
    std::vector<GoodPress> result;
    for (std::size_t i = 0; i < sounds_.size(); ++i) {
      if (isGood(i, group, KeyAction::down))
        result.push_back({sounds_[i].hit, recording_.keys[i].force});
    }
    return result;
  }

  std::vector<GoodRelease> goodReleases(KeyGroup group) const {
    std::vector<GoodRelease> result;
    std::map<uint32_t, float> energies;  // of the last press, by key
    for (std::size_t i = 0; i < sounds_.size(); ++i) {
      const RecordedKey& key = recording_.keys[i];
      if (key.action == KeyAction::down) energies[key.number] = sounds_[i].hit.energy;
      if (isGood(i, group, KeyAction::up)) result.push_back({sounds_[i].hit, energies[key.number]});
    }
    return result;
  }

  static RecordedTiers tiersByForce(const std::vector<GoodPress>& presses, int64_t variants,
                                    const CutTake& cut) {
    std::map<Tier, std::vector<RecordedHit>> hits;
    for (const GoodPress& each : presses)
      hits[tierOf(each.force.value_or(1))].push_back(each.hit);
    RecordedTiers result;
    for (auto& [tier, list] : hits) {
      auto takes = spreadTakes(std::move(list), variants, cut);
      if (!takes.empty()) result.emplace(tier, std::move(takes));
    }
    return result;
  }

  const KeyedRecording& recording_;
  const std::vector<KeyEventSound>& sounds_;
  const SlicerOptions& options_;
  TakeCutter cutter_;
};

float medianLevel(const std::vector<const Takes*>& lists) {
  std::vector<float> levels;
  for (const Takes* list : lists)
    for (const RecordedTake& take : *list)
      levels.push_back(take.level);
  return percentile(std::move(levels), 0.5);
}

float medianLevel(const RecordedTiers& tiers) {
  std::vector<const Takes*> lists;
  for (const auto& [tier, takes] : tiers)
    lists.push_back(&takes);
  return medianLevel(lists);
}

/// Takes of one tier come nearer to each other; groups keep how loud they are beside the letters,
/// which one recording shows.
void levelAll(KeyedTakes& takes) {
  if (takes.down.empty()) return;
  const float usual = medianLevel(takes.down.begin()->second);
  for (auto& [group, tiers] : takes.down) {
    const float target =
        std::clamp(medianLevel(tiers), usual / mostGroupFactor, usual * mostGroupFactor);
    for (auto& [tier, list] : tiers)
      levelTakes(list, target * tierLoudness(tier));
  }
  for (auto& [group, list] : takes.up)
    levelTakes(list, medianLevel({&list}));
}

std::string reportOf(const KeyedTakes& takes, const std::vector<RecordedKey>& keys) {
  const auto presses = std::count_if(keys.begin(), keys.end(), [](const RecordedKey& key) {
    return key.action == KeyAction::down;
  });
  std::string text = std::to_string(presses) + " presses, " +
                     std::to_string(std::ssize(keys) - presses) + " releases:";
  for (std::size_t i = 0; i < keyFateCount; ++i) {
    const auto fate = static_cast<KeyFate>(i);
    const auto count = std::count_if(takes.sounds.begin(), takes.sounds.end(),
                                     [&](const KeyEventSound& each) { return each.fate == fate; });
    text += (i > 0 ? ", " : " ") + std::to_string(count) + " " + std::string(nameOf(fate));
  }
  char numbers[128];
  (void)std::snprintf(numbers, sizeof numbers, "; sound %.1f ms after keys, drift %.0f ppm; ",
                      takes.fit.delay * 1e3, takes.fit.drift * 1e6);
  text += takes.fit.isKnown ? numbers : "; the sounds do not go with the keys; ";
  (void)std::snprintf(numbers, sizeof numbers, "noise floor %.1f dB",
                      20 * std::log10(static_cast<double>(takes.noiseFloor) + 1e-9));
  text += numbers;
  if (takes.noiseLoweredDb > 0) {
    (void)std::snprintf(numbers, sizeof numbers, ", %.0f dB lower in takes", takes.noiseLoweredDb);
    text += numbers;
  }
  return text;
}

}  // namespace

KeyedTakes findKeyedTakes(const KeyedRecording& recording, const SlicerOptions& options) {
  KeyedTakes result;
  const SoundRises rises = findRises(recording.samples, recording.rate);
  result.rate = recording.rate;
  result.noiseFloor = rises.floor;
  result.fit = fitClocks(rises.rises, recording.keys, recording.rate);
  result.sounds =
      findKeySounds(recording.samples, recording.rate, rises, recording.keys, result.fit, options);
  const NoiseRemoval cleaned = removeNoise(recording, result.sounds, result.fit);
  result.noiseLoweredDb = cleaned.loweredDb;
  const auto& samples = cleaned.samples.empty() ? recording.samples : cleaned.samples;
  const KeyedCutter cutter(recording, samples, result.sounds, options);
  for (const KeyGroup group : allKeyGroups) {
    auto presses = cutter.presses(group);
    if (!presses.empty()) result.down.emplace(group, std::move(presses));
    auto releases = options.noReleases ? Takes() : cutter.releases(group);
    if (!releases.empty()) result.up.emplace(group, std::move(releases));
  }
  levelAll(result);
  result.report = reportOf(result, recording.keys);
  return result;
}

}  // namespace tobrin
