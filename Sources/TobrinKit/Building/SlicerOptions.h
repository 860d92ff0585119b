/// How a recording is sliced, and its JSON form. Thread: any.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tobrin {

/// Settings of one recording or recipe. Times in milliseconds.
struct SlicerOptions {
  double preRollMs = 1.5;      ///< kept before the onset of a cut take
  double maxPressMs = 230;     ///< longest press take of ordinary keys
  double maxBigPressMs = 380;  ///< longest press take of wide keys
  double maxReleaseMs = 120;   ///< longest release take
  double minPressMs = 45;      ///< a press with less room before the next hit is not cut
  double mergeWithinMs = 25;   ///< onsets closer than this are one hit
  int64_t alphaVariants = 6;   ///< takes per tier for ordinary keys
  int64_t bigVariants = 4;     ///< takes per tier for wide keys
  int64_t releaseVariants = 6;
  double bigKeyShare =
      0.14;                 ///< share of presses on wide keys; 1.6 times as many are taken for them
  double highPassHz = 45;   ///< removes rumble from cut takes
  double gainDb = 0;        ///< applied to cut takes
  bool noReleases = false;  ///< do not look for releases

  bool operator==(const SlicerOptions&) const = default;
};

/// Slicer options as a JSON object; absent keys take their defaults. Throws `RecipeError`.
SlicerOptions slicerOptionsFromJson(std::string_view text);
std::string toJson(const SlicerOptions& options);

}  // namespace tobrin
