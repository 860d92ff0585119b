/// Takes gravity and tilt out of an acceleration stream and follows its noise floor. Owned by the
/// force sensor. Thread: sensor.
#pragma once

#include "Force/MotionReport.h"

namespace tobrin {

class ImpactFilter {
 public:
  static constexpr double initialNoise = 0.002;  ///< g

  /// The size of the sudden part of one sample, in g. The first sample is taken as rest.
  double magnitude(const Acceleration& sample);

  /// The noise floor in g: a slow average of the magnitudes that are no impacts.
  [[nodiscard]] double noise() const { return noise_; }

  /// Forgets the position of rest, as after a pause; the noise floor stays.
  void rest() { primed_ = false; }

 private:
  void followNoise(double magnitude);

  Acceleration average_;  // gravity and tilt, g
  bool primed_ = false;
  double noise_ = initialNoise;
};

}  // namespace tobrin
