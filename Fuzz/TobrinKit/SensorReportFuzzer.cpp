// Reports of any length and content with any time stamps, through sensor and classifier.
#include <cmath>

#include "Force/ForceClassifier.h"
#include "Force/ForceSensor.h"
#include "FuzzInput.h"

using namespace tobrin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  ForceSensor sensor(nullptr);
  ForceClassifier classifier;
  uint64_t time = 1'000'000'000;
  while (!input.empty()) {
    const auto kind = input.take<uint8_t>();
    time = kind & 1 ? input.take<uint64_t>() : time + input.take<uint32_t>();
    sensor.ingest(input.bytes(kind & 2 ? kind >> 2 : MotionSource::reportBytes), time);
    const uint64_t from = kind & 4 ? input.take<uint64_t>() : time - 12'000'000;
    const auto window = sensor.window(from, time);
    fuzz::require(!window || (window->samples > 0 && std::isfinite(window->peak)));
    fuzz::require(std::isfinite(sensor.noiseFloor()) && sensor.noiseFloor() >= 0);
    if (!window) continue;
    const float relative = classifier.relative(window->peak, sensor.noiseFloor());
    const float position = ForceClassifier::tierPosition(relative);
    fuzz::require(relative >= 0 && position >= 0 && position <= 3);
    for (const float weight : ForceClassifier::weights(position, kind & 8))
      fuzz::require(weight >= 0 && weight <= 1);
    classifier.record(window->peak);
    fuzz::require(classifier.reference() >= 0.005f && classifier.reference() <= 0.08f);
  }
  return 0;
}
