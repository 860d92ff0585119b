#include "Building/WideKeyMarking.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tobrin {
namespace {

using Hit = RecordingSlicer::Hit;

constexpr double frequencySeconds = 0.030;

/// The root of the power-weighted mean square frequency of a press, in Hz.
double meanFrequency(const Hit& hit, std::span<const float> mono, double rate) {
  const auto wanted = static_cast<std::size_t>(frequencySeconds * rate);
  const std::size_t length = std::min({wanted, hit.gapAfter, mono.size() - hit.onset});
  double power = 0;
  double slopePower = 0;
  for (std::size_t i = hit.onset + 1; i < hit.onset + length; ++i) {
    const double x = static_cast<double>(mono[i]);
    const double slope = x - static_cast<double>(mono[i - 1]);
    power += x * x;
    slopePower += slope * slope;
  }
  if (power <= 0) return 0;
  return rate / (2 * std::numbers::pi) * std::sqrt(slopePower / power);
}

/// Each value's place among all, 0 (lowest) to 1; equal values share one place.
std::vector<double> ranks(const std::vector<double>& values) {
  std::vector<double> sorted = values;
  std::sort(sorted.begin(), sorted.end());
  const double last = std::max<double>(1, static_cast<double>(values.size()) - 1);
  std::vector<double> result;
  for (const double value : values) {
    const auto [low, high] = std::equal_range(sorted.begin(), sorted.end(), value);
    const auto middle = static_cast<double>((low - sorted.begin()) + (high - sorted.begin()) - 1);
    result.push_back(middle / 2 / last);
  }
  return result;
}

}  // namespace

void WideKeyMarking::mark(std::vector<Hit>& hits, std::span<const float> mono, double rate,
                          double share) {
  std::vector<Hit*> presses;
  std::vector<double> frequency, brightness, decay;
  for (Hit& hit : hits) {
    hit.isBig = false;
    if (hit.isRelease) continue;
    presses.push_back(&hit);
    frequency.push_back(meanFrequency(hit, mono, rate));
    brightness.push_back(static_cast<double>(hit.brightness));
    decay.push_back(hit.decayMs);
  }
  if (presses.empty() || !(share > 0)) return;
  const auto byFrequency = ranks(frequency);
  const auto byBrightness = ranks(brightness);
  const auto byDecay = ranks(decay);
  std::vector<float> measure;
  for (std::size_t i = 0; i < presses.size(); ++i) {
    constexpr double frequencyWeight = 0.5;
    constexpr double brightnessWeight = 0.2;
    constexpr double decayWeight = 0.3;
    measure.push_back(static_cast<float>(frequencyWeight * byFrequency[i] +
                                         brightnessWeight * byBrightness[i] -
                                         decayWeight * byDecay[i]));
  }
  const float threshold = RecordingSlicer::percentile(measure, std::min(share, 1.0));
  for (std::size_t i = 0; i < presses.size(); ++i)
    presses[i]->isBig = measure[i] < threshold;
}

}  // namespace tobrin
