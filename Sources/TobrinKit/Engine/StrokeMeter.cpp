#include "Engine/StrokeMeter.h"

#include <algorithm>
#include <cassert>

#include "Base/MachTime.h"

namespace tobrin {
namespace {

uint64_t windowStart(uint64_t keyTime) {
  return keyTime - std::min(keyTime, machTicks(StrokeMeter::leadMs));
}

}  // namespace

StrokeStrength StrokeMeter::strength(float peak, float noise) const {
  const float relative = classifier_.relative(peak, noise);
  return {ForceClassifier::tierPosition(relative), relative};
}

StrokeMeter::Reading StrokeMeter::provisional(const ForceSensor& sensor, uint64_t keyTime,
                                              uint64_t now) const {
  constexpr float weakest = 0.6f;  // below, the impact may not have reached its peak yet
  Reading reading{sensor.window(windowStart(keyTime), now), sensor.noiseFloor(), std::nullopt};
  if (!reading.window) return reading;
  const StrokeStrength measured = strength(reading.window->peak, reading.noise);
  if (measured.relative >= weakest) reading.strength = measured;
  return reading;
}

StrokeMeter::Reading StrokeMeter::read(const ForceSensor& sensor, uint64_t keyTime,
                                       uint64_t now) const {
  constexpr float noiseFactor = 3;
  constexpr float leastImpact = 0.0015f;  // g
  const uint64_t end = std::min(now, keyTime + machTicks(lagMs));
  Reading reading{sensor.window(windowStart(keyTime), end), sensor.noiseFloor(), std::nullopt};
  if (reading.window && reading.window->peak > std::max(noiseFactor * reading.noise, leastImpact))
    reading.strength = strength(reading.window->peak, reading.noise);
  return reading;
}

void StrokeMeter::learn(const Reading& reading) {
  assert(reading.window && reading.strength);
  constexpr float adaptation = 0.1f;
  classifier_.record(reading.window->peak);
  typicalPosition_ += adaptation * (reading.strength->position - typicalPosition_);
}

void StrokeMeter::reset() {
  classifier_.reset();
  typicalPosition_ = initialPosition;
}

}  // namespace tobrin
