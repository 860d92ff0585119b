#include "Building/WideKeyMarking.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "Base/Biquad.h"

namespace tobrin {
namespace {

using Hit = RecordedHit;

constexpr double frequencySeconds = 0.030;
constexpr double lowSeconds = 0.040;
constexpr double settlingSeconds = 0.015;  // of the filters, before the hit
constexpr double rumbleHz = 70;            // below is the room's, not the key's
constexpr double butterworthQ = 0.7071;

/// The sound of a press, as far as the next hit leaves it alone.
struct Press {
  std::span<const float> mono;  // of the whole recording
  std::size_t onset;
  std::size_t room;  // samples until the next hit
  double rate;

  [[nodiscard]] std::size_t samples(double seconds) const {
    return std::min({static_cast<std::size_t>(seconds * rate), room, mono.size() - onset});
  }
};

/// The root of the power-weighted mean square frequency, in Hz.
double meanFrequency(const Press& press) {
  const auto sound = press.mono.subspan(press.onset, press.samples(frequencySeconds));
  double power = 0;
  double slopePower = 0;
  for (std::size_t i = 1; i < sound.size(); ++i) {
    const double x = static_cast<double>(sound[i]);
    const double slope = x - static_cast<double>(sound[i - 1]);
    power += x * x;
    slopePower += slope * slope;
  }
  if (power <= 0) return 0;
  return press.rate / (2 * std::numbers::pi) * std::sqrt(slopePower / power);
}

/// How much of the sound lies above rumble and below `hz`, 0 to 1.
double shareBelow(double hz, const Press& press) {
  Biquad high = Biquad::highpass(rumbleHz, butterworthQ, press.rate);
  Biquad low = Biquad::lowpass(hz, butterworthQ, press.rate);
  const auto settling = static_cast<std::size_t>(settlingSeconds * press.rate);
  const std::size_t end = press.onset + press.samples(lowSeconds);
  double all = 0;
  double below = 0;
  for (std::size_t i = press.onset - std::min(settling, press.onset); i < end; ++i) {
    const double clear = high.process(static_cast<double>(press.mono[i]));
    const double kept = low.process(clear);
    if (i < press.onset) continue;
    all += clear * clear;
    below += kept * kept;
  }
  return all > 0 ? below / all : 0;
}

/// Measures of how wide a key sounds; the wider, the lower is each.
constexpr std::size_t measureCount = 4;
using Measures = std::array<double, measureCount>;

Measures measuresOf(const Hit& hit, std::span<const float> mono, double rate) {
  const Press press{mono, hit.onset, hit.gapAfter, rate};
  return {meanFrequency(press), -shareBelow(200, press), -shareBelow(400, press), -hit.decayMs};
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

void markWideKeys(std::vector<Hit>& hits, std::span<const float> mono, double rate, double share) {
  std::vector<Hit*> presses;
  std::array<std::vector<double>, measureCount> measures;
  for (Hit& hit : hits) {
    hit.isBig = false;
    if (hit.isRelease) continue;
    presses.push_back(&hit);
    const Measures found = measuresOf(hit, mono, rate);
    for (std::size_t m = 0; m < measureCount; ++m)
      measures[m].push_back(found[m]);
  }
  if (presses.empty() || !(share > 0)) return;
  std::vector<float> places(presses.size());
  for (const auto& measure : measures) {
    const auto ranked = ranks(measure);
    for (std::size_t i = 0; i < places.size(); ++i)
      places[i] += static_cast<float>(ranked[i]);
  }
  const float threshold = percentile(places, std::min(share, 1.0));
  for (std::size_t i = 0; i < presses.size(); ++i)
    presses[i]->isBig = places[i] < threshold;
}

}  // namespace tobrin
