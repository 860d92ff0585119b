/// Measures how hard keys are struck: pairs a key with the strongest impact of the sensor around
/// it, and learns the user's typical stroke from final readings. Thread: conductor.
#pragma once

#include <cstdint>
#include <optional>

#include "Force/ForceClassifier.h"
#include "Force/ForceSensor.h"

namespace tobrin {

/// How hard one stroke is.
struct StrokeStrength {
  float position = 0;  ///< tier position, 0 to 3
  float relative = 1;  ///< multiples of the user's typical stroke

  bool operator==(const StrokeStrength&) const = default;
};

class StrokeMeter final {
 public:
  /// An impact counts from this long before the key event, because the sensor may feel a stroke
  /// before its switch closes, to this long after it.
  static constexpr double leadMs = 12;
  static constexpr double lagMs = 14;

  struct Reading {
    std::optional<ForceWindow> window;       ///< nothing where the sensor had no sample
    float noise = 0;                         ///< the sensor's floor, g
    std::optional<StrokeStrength> strength;  ///< nothing where the peak is no impact
  };

  /// The impact so far, to start a voice with. No strength where there is none yet, or where it may
  /// only be the beginning of one. Times in host ticks.
  [[nodiscard]] Reading provisional(const ForceSensor& sensor, uint64_t keyTime,
                                    uint64_t now) const;

  /// The strongest impact of the key's window as known now.
  [[nodiscard]] Reading read(const ForceSensor& sensor, uint64_t keyTime, uint64_t now) const;

  /// Takes a final reading with an impact into account.
  void learn(const Reading& reading);

  /// Forgets what the user's strokes were like.
  void reset();

  void setSensitivity(float sensitivity) { classifier_.sensitivity = sensitivity; }

  /// For a stroke without a measured strength: the running average of the measured positions.
  [[nodiscard]] StrokeStrength typical() const { return {typicalPosition_, 1}; }
  /// The peak of a typical stroke, g.
  [[nodiscard]] float reference() const { return classifier_.reference(); }

 private:
  static constexpr float initialPosition = 1;

  [[nodiscard]] StrokeStrength strength(float peak, float noise) const;

  ForceClassifier classifier_;
  float typicalPosition_ = initialPosition;
};

}  // namespace tobrin
