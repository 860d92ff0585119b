/// Cuts single takes out of a recording: rumble removed, both ends faded, never into the next hit.
/// Thread: any.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "Building/HitFeatures.h"
#include "Building/RecordingSlicer.h"

namespace tobrin {

class TakeCutter final {
 public:
  /// Filters and amplifies both channels once, by `highPassHz` and `gainDb`.
  TakeCutter(const RecordingView& recording, const SlicerOptions& options);

  /// A take from `preRollMs` before the hit to at most `longestMs` after it, ended earlier by the
  /// next hit. Nothing where less than `shortestMs` would remain.
  [[nodiscard]] std::optional<RecordedTake> cut(const RecordedHit& hit, double longestMs,
                                                double shortestMs) const;

 private:
  [[nodiscard]] std::size_t samples(double milliseconds) const;

  double rate_;
  std::size_t preRoll_;
  std::vector<float> left_;
  std::vector<float> right_;
};

/// A take's level: root mean square of its first 30 ms, both channels together.
float takeLevel(const RecordedTake& take, double rate);

}  // namespace tobrin
