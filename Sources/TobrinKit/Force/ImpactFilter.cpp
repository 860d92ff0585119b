#include "Force/ImpactFilter.h"

#include <cmath>

namespace tobrin {

double ImpactFilter::magnitude(const Acceleration& sample) {
  constexpr double tiltShare = 0.05;  // of the way to each sample
  if (!primed_) {
    primed_ = true;
    average_ = sample;
  }
  average_.x += (sample.x - average_.x) * tiltShare;
  average_.y += (sample.y - average_.y) * tiltShare;
  average_.z += (sample.z - average_.z) * tiltShare;
  const double x = sample.x - average_.x;
  const double y = sample.y - average_.y;
  const double z = sample.z - average_.z;
  const double magnitude = std::sqrt(x * x + y * y + z * z);
  followNoise(magnitude);
  return magnitude;
}

void ImpactFilter::followNoise(double magnitude) {
  constexpr double noiseShare = 0.002;
  constexpr double impactFactor = 4;      // what exceeds the floor this often is no noise
  constexpr double smallestNoise = 1e-5;  // g; an estimate stuck near 0 must be able to grow
  if (noise_ < smallestNoise || magnitude < impactFactor * noise_)
    noise_ += (magnitude - noise_) * noiseShare;
}

}  // namespace tobrin
