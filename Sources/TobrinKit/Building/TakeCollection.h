/// The takes of a recorded pack before they are written, brought to one level across recordings.
/// Thread: any.
#pragma once

#include <map>
#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {

class TakeCollection final {
 public:
  static constexpr float referencePeak = 0.25f;  ///< of the typical medium take
  static constexpr float largestPeak = 0.95f;    ///< of any take as written

  explicit TakeCollection(const SlicerOptions& options) : options_(options) {}

  /// Adds one sliced recording, scaled so that its typical take peaks at `referencePeak`.
  void add(SlicedRecording sliced);

  /// Adds takes for the return key alone, at the level of the other wide keys.
  void addEnter(std::vector<RecordedTake> takes);

  /// Takes in turn from each recording, so that all are heard, up to the number of variants.
  [[nodiscard]] RecordedTiers keys() const;
  [[nodiscard]] RecordedTiers wide() const;
  [[nodiscard]] std::vector<RecordedTake> releases() const;
  [[nodiscard]] const std::vector<RecordedTake>& enter() const { return enter_; }

 private:
  [[nodiscard]] RecordedTiers tiers(KeyGroup group, int64_t variants) const;

  SlicerOptions options_;
  std::vector<SlicedRecording> recordings_;
  std::vector<RecordedTake> enter_;
};

/// The largest absolute sample of a take.
float peak(const RecordedTake& take);

/// Multiplies both channels, but by less where the take would exceed `largestPeak`.
void scale(RecordedTake& take, float gain);

}  // namespace tobrin
