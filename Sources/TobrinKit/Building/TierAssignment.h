/// Spreads hits over the force tiers by their energy.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {

struct TierAssignment {
  /// Part of the hits in ascending order of energy, as fractions [low, high).
  struct Band {
    Tier tier;
    double low;
    double high;
  };

  /// The bands that `count` hits are spread over: four with clear gaps between them, so that tiers
  /// differ audibly, or one for all where there are fewer than four hits a take.
  static std::vector<Band> bands(std::size_t count, int64_t variants);

  using Cut = std::function<std::optional<RecordingSlicer::Take>(const RecordingSlicer::Hit&)>;

  /// Up to `variants` takes a tier, spread evenly over its band; hits that cannot be cut are passed
  /// over, and no hit is used twice.
  static RecordingSlicer::TierTakes tiers(std::vector<RecordingSlicer::Hit> hits, int64_t variants,
                                          const Cut& cut);

  /// Brings takes nearer to `target`, but only in part, so that strokes still differ. `target` as a
  /// level.
  static void level(std::vector<RecordingSlicer::Take>& takes, float target);

  /// Loudness of each tier relative to the median take.
  static float factor(Tier tier);
};

}  // namespace tobrin
