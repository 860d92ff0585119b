#include "Building/TakeCollection.h"

#include <algorithm>
#include <cmath>

namespace tobrin {
namespace {

using Take = RecordedTake;
using TierTakes = RecordedTiers;

constexpr float smallestPeak = 1e-6f;
constexpr float enterFactor = 1.15f;  // the return key is a wide key

/// The peak of a recording's typical medium take, of ordinary keys where there are any.
float typicalPeak(const SlicedRecording& recording) {
  std::vector<float> peaks;
  for (const auto& [group, tiers] : recording.down) {
    const auto medium = tiers.find(Tier::medium);
    if (medium == tiers.end() || !peaks.empty()) continue;
    for (const Take& take : medium->second)
      peaks.push_back(peak(take));
  }
  return percentile(std::move(peaks), 0.5);
}

/// The first takes of every list, then the second ones, and so on.
std::vector<Take> interleaved(const std::vector<const std::vector<Take>*>& lists, int64_t most) {
  std::vector<Take> result;
  const auto isFull = [&] { return static_cast<int64_t>(result.size()) >= most; };
  for (std::size_t place = 0;; ++place) {
    bool any = false;
    for (const auto* list : lists) {
      if (place >= list->size() || isFull()) continue;
      result.push_back((*list)[place]);
      any = true;
    }
    if (!any) return result;
  }
}

}  // namespace

float peak(const Take& take) {
  float result = 0;
  for (const float x : take.left)
    result = std::max(result, std::abs(x));
  for (const float x : take.right)
    result = std::max(result, std::abs(x));
  return result;
}

void scale(Take& take, float gain) {
  const float limit = TakeCollection::largestPeak / std::max(peak(take), smallestPeak);
  const float applied = std::min(gain, limit);
  for (float& x : take.left)
    x *= applied;
  for (float& x : take.right)
    x *= applied;
  take.level *= applied;
}

void TakeCollection::add(SlicedRecording sliced) {
  const float gain = referencePeak / std::max(typicalPeak(sliced), smallestPeak);
  for (auto& [group, tiers] : sliced.down) {
    for (auto& [tier, takes] : tiers) {
      for (Take& take : takes)
        scale(take, gain);
    }
  }
  for (Take& take : sliced.up)
    scale(take, gain);
  recordings_.push_back(std::move(sliced));
}

void TakeCollection::addEnter(std::vector<Take> takes) {
  std::vector<float> levels;
  for (const auto& [tier, list] : keys()) {
    if (tier != Tier::medium) continue;
    for (const Take& take : list)
      levels.push_back(take.level);
  }
  const float target = percentile(std::move(levels), 0.5) * enterFactor;
  for (Take& take : takes) {
    const float wanted = target > 0 ? target / std::max(take.level, smallestPeak)
                                    : referencePeak / std::max(peak(take), smallestPeak);
    scale(take, wanted);
    enter_.push_back(std::move(take));
  }
}

TierTakes TakeCollection::tiers(KeyGroup group, int64_t variants) const {
  TierTakes result;
  for (const Tier tier : allTiers) {
    std::vector<const std::vector<Take>*> lists;
    for (const auto& recording : recordings_) {
      const auto tiers = recording.down.find(group);
      if (tiers == recording.down.end()) continue;
      const auto takes = tiers->second.find(tier);
      if (takes != tiers->second.end()) lists.push_back(&takes->second);
    }
    auto takes = interleaved(lists, variants);
    if (!takes.empty()) result.emplace(tier, std::move(takes));
  }
  return result;
}

TierTakes TakeCollection::keys() const {
  return tiers(KeyGroup::alpha, options_.alphaVariants);
}

TierTakes TakeCollection::wide() const {
  return tiers(KeyGroup::space, options_.bigVariants);
}

std::vector<Take> TakeCollection::releases() const {
  std::vector<const std::vector<Take>*> lists;
  for (const auto& recording : recordings_)
    lists.push_back(&recording.up);
  return interleaved(lists, options_.releaseVariants);
}

}  // namespace tobrin
