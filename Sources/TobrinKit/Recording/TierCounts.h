/// Decides whether presses are spread over the force tiers by force or by energy. Thread: any.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>

#include "Building/RecordingSlicer.h"

namespace tobrin {

/// A press whose sound may be cut.
struct GoodPress {
  RecordedHit hit;
  std::optional<float> force;  ///< tier position, 0 to 3
};

/// Whether the group's keys are wide, and sound longer than letters.
[[nodiscard]] bool isLarge(KeyGroup group);

/// How many takes a tier of the group gets: `alphaVariants` for letters and modifiers,
/// `bigVariants` for other keys.
[[nodiscard]] int64_t variantsOf(KeyGroup group, const SlicerOptions& options);

/// The tier that a measured force stands for.
[[nodiscard]] Tier tierOf(float force);

/// Whether enough of the presses have a measured force to go by that and not by their energy.
[[nodiscard]] bool haveForce(std::span<const GoodPress> presses);

/// How many presses there are to choose each tier's takes from, by force or as `takesByTier` does.
[[nodiscard]] std::array<std::size_t, tierCount> tierCounts(std::span<const GoodPress> presses,
                                                            int64_t variants);

}  // namespace tobrin
