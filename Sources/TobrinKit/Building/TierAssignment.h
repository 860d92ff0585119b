/// Spreads hits over the force tiers by their energy. Thread: any.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {

/// Part of the hits in ascending order of energy, as fractions [low, high).
struct TierBand {
  Tier tier;
  double low;
  double high;
};

/// The bands that `count` hits are spread over: four with clear gaps between them, so that tiers
/// differ audibly, or one for all where there are fewer than four hits a take.
[[nodiscard]] std::vector<TierBand> tierBands(std::size_t count, int64_t variants);

/// The places [first, last) of a band among `count` hits, at least one; `count` is not 0.
[[nodiscard]] std::pair<std::size_t, std::size_t> placesOf(const TierBand& band, std::size_t count);

/// Cuts the take of a hit; nothing where it cannot be cut.
using CutTake = std::function<std::optional<RecordedTake>(const RecordedHit&)>;

/// Up to `variants` takes a tier, spread evenly over its band; hits that cannot be cut are passed
/// over, and no hit is used twice.
[[nodiscard]] RecordedTiers takesByTier(std::vector<RecordedHit> hits, int64_t variants,
                                        const CutTake& cut);

/// Up to `variants` takes of one tier, spread evenly over its hits by energy; hits that cannot be
/// cut are passed over, and no hit is used twice.
[[nodiscard]] std::vector<RecordedTake> spreadTakes(std::vector<RecordedHit> hits, int64_t variants,
                                                    const CutTake& cut);

/// Brings the levels of takes part of the way to the level `target`, so that strokes still differ.
void levelTakes(std::vector<RecordedTake>& takes, float target);

/// Loudness of each tier relative to the median take.
[[nodiscard]] float tierLoudness(Tier tier);

}  // namespace tobrin
