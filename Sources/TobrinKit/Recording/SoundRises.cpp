#include "Recording/SoundRises.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <utility>

#include "Base/Biquad.h"
#include "Building/RecordingSlicer.h"

namespace tobrin {
namespace {

constexpr double butterworthQ = 0.7071;
constexpr double signalHz = 700;
constexpr double hopSeconds = 0.0005;
constexpr std::size_t shortWindow = 6;  // hops: 3 ms before and after, for where a rise is
constexpr std::size_t longWindow = 24;  // hops: 12 ms, for what noise hides from the short one
constexpr std::size_t shortReach = 4;   // hops: a rise is the clearest within 2 ms
constexpr std::size_t longReach = 20;
constexpr std::ptrdiff_t placeReach = 10;
constexpr std::size_t noiseHops = 20;  // 10 ms: long enough for a steady figure
constexpr double noisePercentile = 0.15;
// Noise alone exceeds the first about once in ten minutes, and the second a few times a second:
// what the long window finds is for those who know where to look.
constexpr double leastShortEvidence = 14;
constexpr double leastLongEvidence = 4;
constexpr double silence = 1e-12;  // power
constexpr double levelSeconds = 0.010;

/// Corners of the bands in Hz. Hum and rumble stay below the first.
struct Band {
  double low;
  double high;
};
constexpr std::array<Band, 9> bands = {{{120, 350},
                                        {350, 700},
                                        {700, 1400},
                                        {1400, 2200},
                                        {2200, 3400},
                                        {3400, 5000},
                                        {5000, 7500},
                                        {7500, 11000},
                                        {11000, 20000}}};

std::vector<float> filtered(std::span<const float> mono, Biquad filter) {
  std::vector<float> result(mono.size());
  std::transform(mono.begin(), mono.end(), result.begin(), [&](float x) {
    return static_cast<float>(filter.process(static_cast<double>(x)));
  });
  return result;
}

/// Mean power of each hop.
std::vector<double> hopPowers(std::span<const float> mono, const Band& band, double rate,
                              std::size_t hop) {
  Biquad above = Biquad::highpass(band.low, butterworthQ, rate);
  Biquad below = Biquad::lowpass(band.high, butterworthQ, rate);
  std::vector<double> powers(mono.size() / hop);
  for (std::size_t k = 0; k < powers.size(); ++k) {
    double sum = 0;
    for (const float x : mono.subspan(k * hop, hop)) {
      const double y = below.process(above.process(static_cast<double>(x)));
      sum += y * y;
    }
    powers[k] = sum / static_cast<double>(hop);
  }
  return powers;
}

double noisePower(const std::vector<double>& powers) {
  std::vector<float> means;
  for (std::size_t k = 0; k + noiseHops <= powers.size(); k += noiseHops) {
    double sum = 0;
    for (std::size_t i = k; i < k + noiseHops; ++i)
      sum += powers[i];
    means.push_back(static_cast<float>(sum / noiseHops));
  }
  return static_cast<double>(percentile(std::move(means), noisePercentile)) + silence;
}

/// Adds one band's evidence for a rise at each hop: how much better two levels explain the windows
/// before and after than one level does, for noise of that many free values. No level counts as
/// lower than the noise, so that a change in silence says nothing.
void addEvidence(const std::vector<double>& powers, double noise, const Band& band,
                 std::size_t window, std::vector<double>& sum) {
  if (powers.size() <= 2 * window) return;
  const auto hops = static_cast<double>(window);
  const double freeValues = (band.high - band.low) * hopSeconds * hops * 2;
  double before = 0;
  double after = 0;
  for (std::size_t k = 0; k < window; ++k) {
    before += powers[k];
    after += powers[k + window];
  }
  for (std::size_t k = window; k + window < powers.size(); ++k) {
    const double from = std::max(before / hops, noise);
    const double to = std::max(after / hops, noise);
    const double gain = freeValues / 2 * std::log((from + to) * (from + to) / (4 * from * to));
    sum[k] += to > from ? gain : -gain;
    before += powers[k] - powers[k - window];
    after += powers[k + window] - powers[k];
  }
}

/// The first sample near the hop that belongs to the sound.
std::size_t beginning(std::span<const float> signal, std::size_t at, std::size_t millisecond,
                      float floor) {
  const std::size_t begin = at > millisecond ? at - millisecond : 0;
  const auto part = signal.subspan(begin, std::min(3 * millisecond, signal.size() - begin));
  float peak = 0;
  for (const float x : part)
    peak = std::max(peak, std::abs(x));
  const float level = std::max(0.2f * peak, std::min(3 * floor, 0.5f * peak));
  const auto first =
      std::find_if(part.begin(), part.end(), [&](float x) { return std::abs(x) >= level; });
  return begin + static_cast<std::size_t>(first - part.begin());
}

/// Hops at which the evidence is enough and the clearest within reach.
std::vector<std::size_t> clearest(const std::vector<double>& evidence, std::size_t reach,
                                  double least) {
  std::vector<std::size_t> hops;
  for (std::size_t k = 0; k < evidence.size(); ++k) {
    if (evidence[k] < least) continue;
    const auto from = evidence.begin() + static_cast<std::ptrdiff_t>(k > reach ? k - reach : 0);
    const auto to =
        evidence.begin() + static_cast<std::ptrdiff_t>(std::min(k + reach + 1, evidence.size()));
    if (std::max_element(from, to) - evidence.begin() == static_cast<std::ptrdiff_t>(k))
      hops.push_back(k);
  }
  return hops;
}

/// Level above 700 Hz of the 10 ms from a sample on, in dB.
float levelFrom(std::span<const float> signal, std::size_t sample, double rate) {
  const auto part = signal.subspan(
      sample, std::min(static_cast<std::size_t>(levelSeconds * rate), signal.size() - sample));
  double sum = silence;
  for (const float x : part)
    sum += static_cast<double>(x) * static_cast<double>(x);
  return static_cast<float>(10 * std::log10(sum / static_cast<double>(part.size() + 1)));
}

/// The rises of the short window, and those of the long one that it does not see; they are placed
/// by the short one, which is the finer.
std::vector<std::pair<std::size_t, double>> joined(const std::vector<double>& fine,
                                                   const std::vector<double>& coarse) {
  std::vector<std::pair<std::size_t, double>> result;
  const auto hops = clearest(fine, shortReach, leastShortEvidence);
  result.reserve(hops.size());
  for (const std::size_t k : hops)
    result.emplace_back(k, fine[k]);
  for (const std::size_t k : clearest(coarse, longReach, leastLongEvidence)) {
    const auto next = std::lower_bound(hops.begin(), hops.end(), k > longReach ? k - longReach : 0);
    if (next != hops.end() && *next <= k + longReach) continue;
    // The long window keeps clear of both ends, so there is room to either side.
    const auto place = fine.begin() + static_cast<std::ptrdiff_t>(k);
    const auto best = std::max_element(place - placeReach, place + placeReach + 1);
    result.emplace_back(static_cast<std::size_t>(best - fine.begin()), coarse[k]);
  }
  std::sort(result.begin(), result.end());
  return result;
}

}  // namespace

SoundRises findRises(std::span<const float> mono, double rate) {
  assert(rate > 0);
  SoundRises result;
  result.signal = filtered(mono, Biquad::highpass(signalHz, butterworthQ, rate));
  const auto hop = static_cast<std::size_t>(hopSeconds * rate);
  const std::size_t hops = hop > 0 ? mono.size() / hop : 0;
  if (hops <= 2 * noiseHops) return result;
  std::vector<double> fine(hops, 0.0);
  std::vector<double> coarse(hops, 0.0);
  for (const Band& band : bands) {
    if (band.low >= rate / 2) continue;
    const auto powers = hopPowers(mono, band, rate, hop);
    const double noise = noisePower(powers);
    addEvidence(powers, noise, band, shortWindow, fine);
    addEvidence(powers, noise, band, longWindow, coarse);
  }
  result.floor =
      static_cast<float>(std::sqrt(noisePower(hopPowers(mono, {signalHz, rate / 2}, rate, hop))));
  for (const auto& [hopAt, evidence] : joined(fine, coarse)) {
    const std::size_t sample = beginning(result.signal, hopAt * hop, 2 * hop, result.floor);
    result.rises.push_back(
        {sample, static_cast<float>(evidence), levelFrom(result.signal, sample, rate)});
  }
  return result;
}

}  // namespace tobrin
