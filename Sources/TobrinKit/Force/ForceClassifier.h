/// Turns one impact peak into a strength relative to the user's own typical stroke, and that into a
/// tier position, layer weights and an edge gain. Calibrates itself by the running median of recent
/// peaks. A plain value; all arithmetic in 32-bit float. Thread: conductor.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "Base/KeyEvent.h"

namespace tobrin {

class ForceClassifier {
 public:
  static constexpr float defaultReference = 0.02f;  ///< g
  /// Relative strength at the centre of each tier.
  static constexpr std::array<float, tierCount> tierCenters = {0.4f, 1.0f, 2.2f, 4.0f};
  static constexpr std::size_t historyLimit = 96;    ///< most peaks kept
  static constexpr std::size_t minimumHistory = 12;  ///< fewest peaks before the reference adapts

  explicit ForceClassifier(float reference = defaultReference)
      : reference_(reference), baseReference_(reference) {}

  /// Multiples of a typical stroke, never negative. `peak` and `noise` in g.
  [[nodiscard]] float relative(float peak, float noise) const;

  /// 0 to 3; linear in the logarithm of strength between adjacent tier centres.
  [[nodiscard]] static float tierPosition(float relative);
  [[nodiscard]] float tierPosition(float peak, float noise) const {
    return tierPosition(relative(peak, noise));
  }

  /// Feeds calibration with a final reading's peak in g; peaks that are not positive and finite are
  /// dropped.
  void record(float peak);

  /// Forgets all peaks.
  void reset();

  /// Layer weights of a tier position: one tier, or an equal-power blend of two neighbours.
  [[nodiscard]] static std::array<float, tierCount> weights(float position, bool blend);

  /// Extra loudness below the softest and above the hardest tier centre, 0.45 to 1.25.
  [[nodiscard]] static float edgeGain(float relative);

  float sensitivity = 1.0f;  ///< the user's setting; below 0.05 counts as 0.05
  [[nodiscard]] float reference() const { return reference_; }  ///< typical stroke, g

 private:
  float reference_;
  std::vector<float> history_;  // oldest first
  float baseReference_;
};

}  // namespace tobrin
