#include "Recording/TierCounts.h"

#include <algorithm>
#include <cmath>

#include "Building/TierAssignment.h"

namespace tobrin {

int64_t variantsOf(KeyGroup group, const SlicerOptions& options) {
  return isLarge(group) ? options.bigVariants : options.alphaVariants;
}

bool isLarge(KeyGroup group) {
  return group != KeyGroup::alpha && group != KeyGroup::modifier;
}

Tier tierOf(float force) {
  return allTiers[static_cast<std::size_t>(std::lround(std::clamp(force, 0.0f, 3.0f)))];
}

bool haveForce(std::span<const GoodPress> presses) {
  constexpr double decidingShare = 0.8;
  const auto measured = std::count_if(presses.begin(), presses.end(),
                                      [](const GoodPress& each) { return each.force.has_value(); });
  return !presses.empty() &&
         static_cast<double>(measured) >= decidingShare * static_cast<double>(presses.size());
}

std::array<std::size_t, tierCount> tierCounts(std::span<const GoodPress> presses,
                                              int64_t variants) {
  std::array<std::size_t, tierCount> counts{};
  if (presses.empty()) return counts;
  if (haveForce(presses)) {
    for (const GoodPress& each : presses)
      counts[index(tierOf(each.force.value_or(1)))] += 1;
    return counts;
  }
  for (const TierBand& band : tierBands(presses.size(), variants)) {
    const auto [begin, end] = placesOf(band, presses.size());
    counts[index(band.tier)] = end - begin;
  }
  return counts;
}

}  // namespace tobrin
