#include "Building/HitDetector.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "Base/Biquad.h"
#include "Building/RecordingSlicer.h"

namespace tobrin {
namespace {

constexpr double detectionHz = 700;
constexpr double butterworthQ = 0.7071;
constexpr double frameSeconds = 0.001;
constexpr double hopSeconds = detectionLevelSeconds;
constexpr float silenceDb = -120;
constexpr double floorPercentile = 0.2;
constexpr float riseDb = 12;  // over the quietest of the last 3 ms
constexpr float aboveFloorDb = 18;
constexpr float aboveRecentDb = 3;  // over the loudest of the last 30 ms but 2
constexpr double longestMergeMs = 60'000;
constexpr std::size_t baseFrames = 6;
constexpr std::size_t recentFrames = 60;
constexpr std::size_t recentGuardFrames = 4;

std::size_t samplesIn(double seconds, double rate) {
  return static_cast<std::size_t>(seconds * rate);
}

/// Half-open range of samples.
struct Range {
  std::size_t begin;
  std::size_t end;
};

float largest(std::span<const float> signal, Range range) {
  float result = 0;
  for (std::size_t i = range.begin; i < range.end; ++i)
    result = std::max(result, std::abs(signal[i]));
  return result;
}

/// The first sample of the range that reaches `level`, or `fallback`.
std::size_t firstReaching(std::span<const float> signal, Range range, float level,
                          std::size_t fallback) {
  for (std::size_t i = range.begin; i < range.end; ++i) {
    if (std::abs(signal[i]) >= level) return i;
  }
  return fallback;
}

std::vector<float> highPassed(std::span<const float> mono, double rate) {
  Biquad filter = Biquad::highpass(detectionHz, butterworthQ, rate);
  std::vector<float> result(mono.size());
  for (std::size_t i = 0; i < mono.size(); ++i) {
    result[i] = static_cast<float>(filter.process(static_cast<double>(mono[i])));
  }
  return result;
}

/// Level in dB of 1 ms frames, one every half millisecond.
std::vector<float> envelope(std::span<const float> signal, double rate) {
  const std::size_t frame = samplesIn(frameSeconds, rate);
  const std::size_t hop = samplesIn(hopSeconds, rate);
  if (frame == 0 || hop == 0 || signal.size() < frame) return {};
  std::vector<float> levels((signal.size() - frame) / hop, silenceDb);
  for (std::size_t k = 0; k < levels.size(); ++k) {
    double sum = 0;
    for (const float x : signal.subspan(k * hop, frame)) {
      sum += static_cast<double>(x) * static_cast<double>(x);
    }
    levels[k] = static_cast<float>(10 * std::log10(sum / static_cast<double>(frame) + 1e-12));
  }
  return levels;
}

bool risesAt(std::span<const float> levels, std::size_t k, float floorDb) {
  const auto last = levels.subspan(k - baseFrames, baseFrames);
  const float base = *std::min_element(last.begin(), last.end());
  if (!(levels[k] - base > riseDb) || !(levels[k] > floorDb + aboveFloorDb)) return false;
  const std::size_t from = k > recentFrames ? k - recentFrames : 0;
  static_assert(recentGuardFrames < baseFrames);  // there is something before
  const auto before = levels.subspan(from, k - recentGuardFrames - from);
  return levels[k] > *std::max_element(before.begin(), before.end()) + aboveRecentDb;
}

/// Where in the neighbourhood of a rising frame the sound itself starts.
std::size_t onsetNear(std::span<const float> signal, std::size_t start, double rate) {
  const std::size_t before = samplesIn(0.003, rate);
  const Range range{start > before ? start - before : 0,
                    std::min(start + samplesIn(0.004, rate), signal.size())};
  return firstReaching(signal, range, 0.25f * largest(signal, range), start);
}

std::vector<std::size_t> scan(std::span<const float> signal, std::span<const float> levels,
                              double rate, float floorDb, std::size_t mergeDistance) {
  const std::size_t hop = samplesIn(hopSeconds, rate);
  const std::size_t framesAfterOnset = samplesIn(0.008, rate) / hop;
  std::vector<std::size_t> onsets;
  for (std::size_t k = baseFrames; k < levels.size();) {
    if (!risesAt(levels, k, floorDb)) {
      ++k;
      continue;
    }
    const std::size_t onset = onsetNear(signal, k * hop, rate);
    if (onsets.empty() || onset >= onsets.back() + mergeDistance) onsets.push_back(onset);
    k += framesAfterOnset;
  }
  return onsets;
}

/// A faint touch ahead of the stroke is no onset: where the peak comes late and out of quiet, the
/// onset moves to the peak's own start.
std::size_t refined(std::span<const float> signal, std::size_t onset, std::size_t end,
                    double rate) {
  std::size_t peakAt = onset;
  float peak = 0;
  for (std::size_t i = onset; i < end; ++i) {
    if (std::abs(signal[i]) > peak) {
      peak = std::abs(signal[i]);
      peakAt = i;
    }
  }
  const std::size_t run = samplesIn(0.004, rate);
  if (peakAt - onset <= samplesIn(0.012, rate)) return onset;
  const Range before{peakAt - run, peakAt};
  if (largest(signal, before) >= 0.35f * peak) return onset;
  return firstReaching(signal, {before.begin, end}, 0.2f * peak, onset);
}

}  // namespace

std::vector<float> detectionLevels(std::span<const float> mono, double rate) {
  return envelope(highPassed(mono, rate), rate);
}

Onsets findOnsets(std::span<const float> mono, double rate, double mergeWithinMs) {
  assert(rate > 0);
  Onsets result;
  result.signal = highPassed(mono, rate);
  const std::vector<float> levels = envelope(result.signal, rate);
  const float floorDb = percentile(levels, floorPercentile);
  result.floor = static_cast<float>(std::pow(10.0, static_cast<double>(floorDb) / 20));
  if (levels.empty()) return result;
  const auto mergeDistance =
      static_cast<std::size_t>(rate * std::clamp(mergeWithinMs, 0.0, longestMergeMs) / 1000);
  const auto found = scan(result.signal, levels, rate, floorDb, mergeDistance);
  const std::size_t reach = samplesIn(0.090, rate);
  for (std::size_t i = 0; i < found.size(); ++i) {
    const std::size_t next = i + 1 < found.size() ? found[i + 1] : mono.size();
    const std::size_t end = std::min({found[i] + reach, next, mono.size()});
    result.samples.push_back(refined(result.signal, found[i], end, rate));
  }
  return result;
}

}  // namespace tobrin
