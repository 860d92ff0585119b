#include "Building/TierAssignment.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <span>

namespace tobrin {
namespace {

using Hit = RecordedHit;
using Take = RecordedTake;

constexpr int64_t fewestPerTake = 4;
constexpr float levellingExponent = 0.7f;
constexpr float quietest = 1e-9f;

std::size_t part(double fraction, std::size_t count) {
  return static_cast<std::size_t>(fraction * static_cast<double>(count));
}

/// Takes out of one band, the hits at even strides first.
std::vector<Take> takesOf(std::span<const Hit> band, int64_t variants, const CutTake& cut) {
  const auto wanted = static_cast<std::size_t>(std::max<int64_t>(variants, 0));
  const std::size_t count = band.size();
  const std::size_t stride = wanted < 2       ? std::max<std::size_t>(count, 1)
                             : count < wanted ? 1
                                              : count / wanted;
  std::vector<Take> takes;
  std::vector<bool> used(count, false);
  const auto use = [&](std::size_t position) {
    if (used[position] || takes.size() >= wanted) return;
    used[position] = true;
    if (auto take = cut(band[position])) takes.push_back(std::move(*take));
  };
  for (std::size_t position = stride / 2; position < count; position += stride)
    use(position);
  for (std::size_t position = 0; position < count; ++position)
    use(position);
  return takes;
}

void sortByEnergy(std::vector<Hit>& hits) {
  std::stable_sort(hits.begin(), hits.end(),
                   [](const Hit& a, const Hit& b) { return a.energy < b.energy; });
}

}  // namespace

std::vector<TierBand> tierBands(std::size_t count, int64_t variants) {
  const bool isScarce = static_cast<double>(count) < static_cast<double>(variants) * fewestPerTake;
  if (isScarce) return {{Tier::medium, 0.0, 1.0}};
  return {{Tier::soft, 0.08, 0.30},
          {Tier::medium, 0.38, 0.62},
          {Tier::hard, 0.70, 0.88},
          {Tier::slam, 0.92, 1.0}};
}

std::pair<std::size_t, std::size_t> placesOf(const TierBand& band, std::size_t count) {
  assert(count > 0);
  const std::size_t begin = std::min(part(band.low, count), count - 1);
  return {begin, std::max(std::min(part(band.high, count), count), begin + 1)};
}

RecordedTiers takesByTier(std::vector<Hit> hits, int64_t variants, const CutTake& cut) {
  assert(cut);
  sortByEnergy(hits);
  RecordedTiers result;
  if (hits.empty()) return result;
  for (const TierBand& band : tierBands(hits.size(), variants)) {
    const auto [begin, end] = placesOf(band, hits.size());
    auto takes = takesOf(std::span(hits).subspan(begin, end - begin), variants, cut);
    if (!takes.empty()) result.emplace(band.tier, std::move(takes));
  }
  return result;
}

std::vector<Take> spreadTakes(std::vector<Hit> hits, int64_t variants, const CutTake& cut) {
  sortByEnergy(hits);
  return takesOf(hits, variants, cut);
}

void levelTakes(std::vector<Take>& takes, float target) {
  for (Take& take : takes) {
    const float gain = std::pow(target / std::max(take.level, quietest), levellingExponent);
    for (float& x : take.left)
      x *= gain;
    for (float& x : take.right)
      x *= gain;
    take.level *= gain;
  }
}

float tierLoudness(Tier tier) {
  constexpr std::array<float, tierCount> factors = {0.55f, 1.0f, 1.45f, 2.0f};
  return factors[index(tier)];
}

}  // namespace tobrin
