#include "Recording/KeyedTakes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <optional>

#include "Building/TakeCutter.h"
#include "Building/TierAssignment.h"

namespace tobrin {
namespace {

using Takes = std::vector<RecordedTake>;

constexpr double shortestReleaseMs = 20;
constexpr double measuredShare = 0.8;  // of presses: then force decides the tier, not energy
constexpr double mostGroupFactor = 2;  // of a group's loudness against the letters'

/// A good sound and the key that made it.
struct GoodSound {
  RecordedHit hit;
  std::optional<float> force;
  double pressEnergy = 0;  // of a release: of its press, 0 where that is not known
};

bool isLarge(KeyGroup group) {
  return group != KeyGroup::alpha && group != KeyGroup::modifier;
}

class KeyedCutter {
 public:
  KeyedCutter(const KeyedRecording& recording, const std::vector<KeySound>& sounds,
              const SlicerOptions& options)
      : recording_(recording),
        sounds_(sounds),
        options_(options),
        cutter_({recording.samples, recording.samples, recording.samples, recording.rate},
                options) {}

  RecordedTiers presses(KeyGroup group) const {
    const bool large = isLarge(group);
    const auto good = goodSounds(group, KeyAction::down);
    const auto variants = large ? options_.bigVariants : options_.alphaVariants;
    const CutTake cut = [&](const RecordedHit& hit) {
      return cutter_.cut(hit, large ? options_.maxBigPressMs : options_.maxPressMs,
                         options_.minPressMs);
    };
    const auto measured =
        std::count_if(good.begin(), good.end(), [](const GoodSound& each) { return each.force; });
    const bool byForce = static_cast<double>(measured) >=
                         measuredShare * static_cast<double>(std::max<std::size_t>(good.size(), 1));
    return byForce ? tiersByForce(good, variants, cut) : takesByTier(hitsOf(good), variants, cut);
  }

  /// Those whose press was most like the usual one come first: a release is played at the strength
  /// of its press.
  Takes releases(KeyGroup group) const {
    auto good = goodSounds(group, KeyAction::up);
    std::vector<float> energies;
    for (const GoodSound& each : good)
      if (each.pressEnergy > 0) energies.push_back(static_cast<float>(each.pressEnergy));
    const auto usual = static_cast<double>(percentile(std::move(energies), 0.5));
    const auto away = [&](const GoodSound& each) {
      return usual > 0 && each.pressEnergy > 0 ? std::abs(std::log(each.pressEnergy / usual)) : 9.0;
    };
    std::stable_sort(good.begin(), good.end(),
                     [&](const GoodSound& a, const GoodSound& b) { return away(a) < away(b); });
    Takes takes;
    for (const GoodSound& each : good) {
      if (static_cast<int64_t>(takes.size()) >= options_.releaseVariants) break;
      auto take = cutter_.cut(each.hit, options_.maxReleaseMs, shortestReleaseMs);
      if (take) takes.push_back(std::move(*take));
    }
    return takes;
  }

 private:
  static std::vector<RecordedHit> hitsOf(const std::vector<GoodSound>& sounds) {
    std::vector<RecordedHit> hits;
    for (const GoodSound& each : sounds)
      hits.push_back(each.hit);
    return hits;
  }

  std::vector<GoodSound> goodSounds(KeyGroup group, KeyAction action) const {
    std::vector<GoodSound> result;
    std::map<uint32_t, double> pressEnergies;  // of the last press, by key
    for (std::size_t i = 0; i < sounds_.size(); ++i) {
      const RecordedKey& key = recording_.keys[i];
      const KeySound& sound = sounds_[i];
      if (key.action == KeyAction::down)
        pressEnergies[key.number] = static_cast<double>(sound.hit.energy);
      if (key.group != group || key.action != action || sound.fate != KeyFate::good) continue;
      result.push_back({sound.hit, key.force, pressEnergies[key.number]});
    }
    return result;
  }

  static RecordedTiers tiersByForce(const std::vector<GoodSound>& sounds, int64_t variants,
                                    const CutTake& cut) {
    RecordedTiers result;
    for (const Tier tier : allTiers) {
      std::vector<RecordedHit> hits;
      for (const GoodSound& each : sounds) {
        const float position = std::clamp(each.force.value_or(1), 0.0f, 3.0f);
        if (std::lround(position) == static_cast<long>(index(tier))) hits.push_back(each.hit);
      }
      auto takes = spreadTakes(std::move(hits), variants, cut);
      if (!takes.empty()) result.emplace(tier, std::move(takes));
    }
    return result;
  }

  const KeyedRecording& recording_;
  const std::vector<KeySound>& sounds_;
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
  const auto most = static_cast<float>(mostGroupFactor);
  for (auto& [group, tiers] : takes.down) {
    const float target = std::clamp(medianLevel(tiers), usual / most, usual * most);
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
                                     [&](const KeySound& each) { return each.fate == fate; });
    text += (i > 0 ? ", " : " ") + std::to_string(count) + " " + std::string(nameOf(fate));
  }
  char numbers[128];
  (void)std::snprintf(numbers, sizeof numbers, "; sound %.1f ms after keys, drift %.0f ppm; ",
                      takes.fit.delay * 1e3, takes.fit.drift * 1e6);
  text += takes.fit.isKnown ? numbers : "; the sounds do not go with the keys; ";
  (void)std::snprintf(numbers, sizeof numbers, "noise floor %.1f dB",
                      20 * std::log10(static_cast<double>(takes.noiseFloor) + 1e-9));
  return text + numbers;
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
  const KeyedCutter cutter(recording, result.sounds, options);
  for (const KeyGroup group : allKeyGroups) {
    auto presses = cutter.presses(group);
    if (!presses.empty()) result.down.emplace(group, std::move(presses));
    auto releases = cutter.releases(group);
    if (!releases.empty()) result.up.emplace(group, std::move(releases));
  }
  levelAll(result);
  result.report = reportOf(result, recording.keys);
  return result;
}

}  // namespace tobrin
