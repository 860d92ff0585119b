/// The takes of a recorded pack before they are written, brought to one level across recordings.
#pragma once

#include <map>
#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {

class TakeCollection final {
 public:
  static constexpr float referencePeak = 0.25f;  ///< of the typical medium take
  static constexpr float largestPeak = 0.95f;    ///< of any take as written

  explicit TakeCollection(const RecordingSlicer::Options& options) : options_(options) {}

  /// Adds one sliced recording, scaled so that its typical take peaks at `referencePeak`.
  void add(RecordingSlicer::Result sliced);

  /// Adds takes for the return key alone, at the level of the other wide keys.
  void addEnter(std::vector<RecordingSlicer::Take> takes);

  /// Takes in turn from each recording, so that all are heard, up to the number of variants.
  [[nodiscard]] RecordingSlicer::TierTakes keys() const;
  [[nodiscard]] RecordingSlicer::TierTakes wide() const;
  [[nodiscard]] std::vector<RecordingSlicer::Take> releases() const;
  [[nodiscard]] const std::vector<RecordingSlicer::Take>& enter() const { return enter_; }

 private:
  [[nodiscard]] RecordingSlicer::TierTakes tiers(KeyGroup group, int64_t variants) const;

  RecordingSlicer::Options options_;
  std::vector<RecordingSlicer::Result> recordings_;
  std::vector<RecordingSlicer::Take> enter_;
};

/// The largest absolute sample of a take.
float peak(const RecordingSlicer::Take& take);

/// Multiplies both channels, but by less where the take would exceed `largestPeak`.
void scale(RecordingSlicer::Take& take, float gain);

}  // namespace tobrin
