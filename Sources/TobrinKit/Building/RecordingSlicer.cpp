#include "Building/RecordingSlicer.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <utility>

#include "Base/SplitMix64.h"
#include "Building/HitDetector.h"
#include "Building/HitFeatures.h"
#include "Building/ReleaseMarking.h"
#include "Building/TakeCutter.h"
#include "Building/TierAssignment.h"
#include "Building/WideKeyMarking.h"

namespace tobrin {
namespace {

using Hit = RecordedHit;
using Take = RecordedTake;
using TierTakes = RecordedTiers;
using Options = SlicerOptions;
using Fate = HitFate;

constexpr float busyBeforePress = 0.25f;
constexpr float busyBeforeRelease = 0.7f;
constexpr double wideOverlap =
    1.6;  // wider than the share itself, so that few wide keys are missed
constexpr float wideFactor = 1.15f;
constexpr double shortestReleaseMs = 20;
// A noise gate leaves residue far below any key; it is nothing to play.
constexpr float faintestShare = 0.005f;  // of the loud hits' energy: 46 dB below
constexpr double loudPercentile = 0.9;
constexpr float faintestPeak = 1e-4f;

std::vector<float> monoOf(std::span<const float> left, std::span<const float> right) {
  assert(right.size() >= left.size());
  std::vector<float> mono(left.size());
  for (std::size_t i = 0; i < left.size(); ++i)
    mono[i] = (left[i] + right[i]) * 0.5f;
  return mono;
}

float faintestEnergy(const std::vector<Hit>& hits) {
  std::vector<float> energies;
  energies.reserve(hits.size());
  for (const Hit& hit : hits)
    energies.push_back(hit.energy);
  return faintestShare * percentile(std::move(energies), loudPercentile);
}

Fate fateOf(const Hit& hit, float faintest) {
  if (hit.clipped) return Fate::clipped;
  if (hit.energy < faintest || hit.peak < faintestPeak) return Fate::faint;
  if (hit.preActivity >= (hit.isRelease ? busyBeforeRelease : busyBeforePress)) {
    return Fate::overlapping;
  }
  return hit.isRelease ? Fate::release : hit.isBig ? Fate::bigPress : Fate::press;
}

std::vector<Fate> fatesOf(const std::vector<Hit>& hits, std::size_t mergeDistance) {
  const float faintest = faintestEnergy(hits);
  std::vector<Fate> fates;
  std::size_t last = 0;  // that is no twin
  for (std::size_t i = 0; i < hits.size(); ++i) {
    fates.push_back(fateOf(hits[i], faintest));
    // Refinement may have moved an onset onto its neighbour's, even a release onto the next press:
    // the stronger one keeps the sound.
    const bool isTwin = i > 0 && hits[i].onset < hits[last].onset + mergeDistance;
    const std::size_t weaker = isTwin && hits[i].energy > hits[last].energy ? last : i;
    if (isTwin) fates[weaker] = Fate::repeated;
    if (weaker != i || !isTwin) last = i;
  }
  return fates;
}

std::vector<Hit> hitsOf(Fate fate, const SlicedRecording& result) {
  std::vector<Hit> chosen;
  for (std::size_t i = 0; i < result.hits.size(); ++i) {
    if (result.fates[i] == fate) chosen.push_back(result.hits[i]);
  }
  return chosen;
}

std::vector<Take> releaseTakes(std::vector<Hit> releases, const TakeCutter& cutter,
                               const Options& options) {
  std::vector<Take> takes;
  for (const Hit& hit : shuffledDeterministically(std::move(releases))) {
    if (static_cast<int64_t>(takes.size()) >= options.releaseVariants) break;
    auto take = cutter.cut(hit, options.maxReleaseMs, shortestReleaseMs);
    if (take) takes.push_back(std::move(*take));
  }
  return takes;
}

float medianLevel(const std::map<KeyGroup, TierTakes>& down) {
  std::vector<float> levels;
  for (const auto& [group, tiers] : down) {
    for (const auto& [tier, takes] : tiers) {
      for (const Take& take : takes)
        levels.push_back(take.level);
    }
  }
  return percentile(std::move(levels), 0.5);
}

void levelAll(SlicedRecording& result) {
  const float target = medianLevel(result.down);
  for (auto& [group, tiers] : result.down) {
    const float groupFactor = group == KeyGroup::alpha ? 1.0f : wideFactor;
    for (auto& [tier, takes] : tiers) {
      levelTakes(takes, target * tierLoudness(tier) * groupFactor);
    }
  }
  std::vector<float> levels;
  for (const Take& take : result.up)
    levels.push_back(take.level);
  levelTakes(result.up, percentile(std::move(levels), 0.5));
}

std::string reportOf(const SlicedRecording& result) {
  const auto count = [&](Fate fate) {
    return std::count(result.fates.begin(), result.fates.end(), fate);
  };
  char text[256];
  (void)std::snprintf(text, sizeof text,
                      "%zu hits: %td presses, %td big presses, %td releases, %td clipped, "
                      "%td overlapping, %td too faint, %td repeated; noise floor %.1f dB",
                      result.hits.size(), count(Fate::press), count(Fate::bigPress),
                      count(Fate::release), count(Fate::clipped), count(Fate::overlapping),
                      count(Fate::faint), count(Fate::repeated),
                      20 * std::log10(static_cast<double>(result.noiseFloor)));
  return text;
}

/// Detection over a mix that the caller keeps for later steps.
HitDetection detectIn(const RecordingView& recording, const Options& options) {
  const auto onsets = findOnsets(recording.mono, recording.rate, options.mergeWithinMs);
  HitDetection result{measureHits(recording, onsets), onsets.floor};
  if (!options.noReleases) markReleases(result.hits, recording.rate);
  markWideKeys(result.hits, recording.mono, recording.rate, options.bigKeyShare * wideOverlap);
  return result;
}

}  // namespace

HitDetection detectHits(std::span<const float> left, std::span<const float> right, double rate,
                        const Options& options) {
  const auto mono = monoOf(left, right);
  return detectIn({left, right, mono, rate}, options);
}

SlicedRecording sliceRecording(std::span<const float> left, std::span<const float> right,
                               double rate, const Options& options) {
  const auto mono = monoOf(left, right);
  const RecordingView recording{left, right, mono, rate};
  HitDetection detection = detectIn(recording, options);
  const auto mergeDistance =
      static_cast<std::size_t>(rate * std::clamp(options.mergeWithinMs, 0.0, 60'000.0) / 1000);
  SlicedRecording result;
  result.fates = fatesOf(detection.hits, mergeDistance);
  result.hits = std::move(detection.hits);
  result.noiseFloor = detection.floor;

  const TakeCutter cutter(recording, options);
  const auto cutUpTo = [&](double longestMs) {
    return
        [&, longestMs](const Hit& hit) { return cutter.cut(hit, longestMs, options.minPressMs); };
  };
  auto keys =
      takesByTier(hitsOf(Fate::press, result), options.alphaVariants, cutUpTo(options.maxPressMs));
  auto wide = takesByTier(hitsOf(Fate::bigPress, result), options.bigVariants,
                          cutUpTo(options.maxBigPressMs));
  if (!keys.empty()) result.down.emplace(KeyGroup::alpha, std::move(keys));
  if (!wide.empty()) result.down.emplace(KeyGroup::space, std::move(wide));
  result.up = releaseTakes(hitsOf(Fate::release, result), cutter, options);
  levelAll(result);
  result.report = reportOf(result);
  return result;
}

float percentile(std::vector<float> values, double p) {
  if (values.empty()) return 0;
  const auto last = static_cast<double>(values.size() - 1);
  const double place = std::clamp(p * last, 0.0, last);
  const auto chosen = values.begin() + static_cast<std::ptrdiff_t>(place);
  std::nth_element(values.begin(), chosen, values.end());
  return *chosen;
}

}  // namespace tobrin
