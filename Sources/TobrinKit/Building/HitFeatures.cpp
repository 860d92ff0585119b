#include "Building/HitFeatures.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "Base/Biquad.h"

namespace tobrin {
namespace {

constexpr double peakSeconds = 0.015;
constexpr double energySeconds = 0.030;
constexpr double brightnessSeconds = 0.020;
constexpr double settlingSeconds = 0.005;  // of the filter, before the hit
constexpr double clippedSeconds = 0.030;
constexpr double beforeSeconds = 0.012;
constexpr double decayWindowSeconds = 0.005;
constexpr double decayLimitSeconds = 0.400;
constexpr double decayRatio = 0.01;  // of the power: 20 dB
constexpr float clippingLevel = 0.995f;
constexpr double brightHz = 2000;
constexpr double butterworthQ = 0.7071;

float largest(std::span<const float> samples) {
  float result = 0;
  for (const float x : samples)
    result = std::max(result, std::abs(x));
  return result;
}

double power(std::span<const float> samples) {
  double sum = 0;
  for (const float x : samples)
    sum += static_cast<double>(x) * static_cast<double>(x);
  return sum;
}

/// Measures hits of one recording; holds what all of them share.
class Meter {
 public:
  Meter(const RecordingView& recording, const Onsets& onsets)
      : recording_(recording), onsets_(onsets) {}

  RecordedHit hit(std::size_t index) const {
    RecordedHit hit;
    hit.onset = onsets_.samples[index];
    const bool isLast = index + 1 == onsets_.samples.size();
    const std::size_t next = isLast ? recording_.mono.size() : onsets_.samples[index + 1];
    // Refined onsets may have changed places by a sample or two.
    hit.gapAfter = next > hit.onset ? next - hit.onset : 0;
    hit.peak = largest(from(recording_.mono, hit.onset, peakSeconds));
    hit.clipped =
        std::max(largest(from(recording_.left, hit.onset, clippedSeconds)),
                 largest(from(recording_.right, hit.onset, clippedSeconds))) >= clippingLevel;
    hit.energy = energy(hit);
    hit.brightness = brightness(hit);
    hit.decayMs = decayMs(hit);
    hit.preActivity = preActivity(hit);
    return hit;
  }

 private:
  std::size_t samples(double seconds) const {
    return static_cast<std::size_t>(seconds * recording_.rate);
  }

  std::span<const float> from(std::span<const float> signal, std::size_t onset,
                              double seconds) const {
    const std::size_t begin = std::min(onset, signal.size());
    return signal.subspan(begin, std::min(samples(seconds), signal.size() - begin));
  }

  /// What a stroke radiates in its first 30 ms ranks its force far better than a peak does. A next
  /// hit ends the sum, but not the span: what is missing by then is little.
  float energy(const RecordedHit& hit) const {
    const auto span = from(recording_.mono, hit.onset, energySeconds);
    const double sum = power(span.first(std::min(span.size(), hit.gapAfter)));
    const auto full = static_cast<double>(std::max<std::size_t>(samples(energySeconds), 1));
    return static_cast<float>(std::sqrt(sum / full));
  }

  float brightness(const RecordedHit& hit) const {
    Biquad filter = Biquad::highpass(brightHz, butterworthQ, recording_.rate);
    const std::size_t settling = std::min(samples(settlingSeconds), hit.onset);
    for (const float x : recording_.mono.subspan(hit.onset - settling, settling))
      filter.process(static_cast<double>(x));
    double all = 0;
    double bright = 0;
    for (const float x : from(recording_.mono, hit.onset, brightnessSeconds)) {
      const double above = filter.process(static_cast<double>(x));
      all += static_cast<double>(x) * static_cast<double>(x);
      bright += above * above;
    }
    return all > 0 ? static_cast<float>(std::clamp(bright / all, 0.0, 1.0)) : 0.0f;
  }

  /// The end of the last 5 ms window within reach whose power is within 20 dB of the loudest.
  double decayMs(const RecordedHit& hit) const {
    const auto reach = from(recording_.mono, hit.onset, decayLimitSeconds);
    const auto heard = reach.first(std::min(reach.size(), std::max<std::size_t>(hit.gapAfter, 1)));
    const std::size_t window = std::max<std::size_t>(samples(decayWindowSeconds), 1);
    std::vector<double> powers;
    for (std::size_t at = 0; at + window <= heard.size(); at += window) {
      powers.push_back(power(heard.subspan(at, window)));
    }
    if (powers.empty()) return 1000.0 * static_cast<double>(heard.size()) / recording_.rate;
    const auto loudest = std::max_element(powers.begin(), powers.end());
    auto end = loudest;
    while (end != powers.end() && *end > *loudest * decayRatio)
      ++end;
    const auto windows = static_cast<double>(end - powers.begin());
    return 1000.0 * windows * static_cast<double>(window) / recording_.rate;
  }

  /// Above 700 Hz, so that rumble and hum do not count as activity; against the whole hit, so that
  /// a touch ahead of a low thud does not either.
  float preActivity(const RecordedHit& hit) const {
    const std::size_t length = std::min(samples(beforeSeconds), hit.onset);
    const std::span<const float> signal = onsets_.signal;
    const float before = largest(signal.subspan(hit.onset - length, length));
    const float peak = largest(from(signal, hit.onset, peakSeconds));
    return peak > 0 ? before / std::max(peak, hit.peak) : 0.0f;
  }

  const RecordingView& recording_;
  const Onsets& onsets_;
};

}  // namespace

std::vector<RecordedHit> measureHits(const RecordingView& recording, const Onsets& onsets) {
  assert(recording.right.size() >= recording.left.size());
  const Meter meter(recording, onsets);
  std::vector<RecordedHit> hits;
  hits.reserve(onsets.samples.size());
  for (std::size_t i = 0; i < onsets.samples.size(); ++i)
    hits.push_back(meter.hit(i));
  return hits;
}

}  // namespace tobrin
