#include "Engine/StrokeMeter.h"

#include <algorithm>

#include "Engine/MachTime.h"

namespace tobrin {
namespace {

uint64_t windowStart(uint64_t keyTime) {
  return keyTime - std::min(keyTime, MachTime::ticks(StrokeMeter::leadMs));
}

}  // namespace

StrokeStrength StrokeMeter::strength(float peak, float noise) const {
  const float relative = classifier_.relative(peak, noise);
  return {ForceClassifier::tierPosition(relative), relative};
}

StrokeStrength StrokeMeter::provisional(const ForceSensor& sensor, uint64_t keyTime,
                                        uint64_t now) const {
  constexpr float weakest = 0.6f;  // below, the impact may not have reached its peak yet
  const StrokeStrength typical{typicalPosition_, 1};
  const std::optional<ForceWindow> window = sensor.window(windowStart(keyTime), now);
  if (!window) return typical;
  const StrokeStrength measured = strength(window->peak, sensor.noiseFloor());
  return measured.relative >= weakest ? measured : typical;
}

std::optional<StrokeMeter::Reading> StrokeMeter::read(const ForceSensor& sensor, uint64_t keyTime,
                                                      uint64_t now) const {
  constexpr float noiseFactor = 3;
  constexpr float leastImpact = 0.0015f;  // g
  const uint64_t end = std::min(now, keyTime + MachTime::ticks(lagMs));
  const std::optional<ForceWindow> window = sensor.window(windowStart(keyTime), end);
  if (!window) return std::nullopt;
  const float noise = sensor.noiseFloor();
  Reading reading{window->peak, std::nullopt};
  if (window->peak > std::max(noiseFactor * noise, leastImpact))
    reading.strength = strength(window->peak, noise);
  return reading;
}

void StrokeMeter::learn(const Reading& reading) {
  constexpr float adaptation = 0.1f;
  classifier_.record(reading.peak);
  typicalPosition_ += adaptation * (reading.strength->position - typicalPosition_);
}

void StrokeMeter::reset() {
  classifier_.reset();
  typicalPosition_ = initialPosition;
}

}  // namespace tobrin
