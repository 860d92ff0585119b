#include "Building/TakeCutter.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

#include "Base/Biquad.h"

namespace tobrin {
namespace {

constexpr double butterworthQ = 0.7071;
constexpr double levelSeconds = 0.030;
constexpr double fadeOutMs = 12;
// The next hit's onset is where it is already loud; its sound starts a little earlier.
constexpr double clearOfNextMs = 3;

std::vector<float> prepared(std::span<const float> channel, double rate,
                            const SlicerOptions& options) {
  const double gain = std::pow(10.0, options.gainDb / 20);
  std::vector<float> result(channel.size());
  if (!(options.highPassHz > 0)) {
    std::transform(channel.begin(), channel.end(), result.begin(),
                   [gain](float x) { return static_cast<float>(static_cast<double>(x) * gain); });
    return result;
  }
  Biquad filter = Biquad::highpass(options.highPassHz, butterworthQ, rate);
  for (std::size_t i = 0; i < channel.size(); ++i) {
    result[i] = static_cast<float>(filter.process(static_cast<double>(channel[i])) * gain);
  }
  return result;
}

/// Raised cosine from 0 (step 0) to just below 1.
float fadeGain(std::size_t step, std::size_t length) {
  const double phase = std::numbers::pi * static_cast<double>(step) / static_cast<double>(length);
  return static_cast<float>(0.5 - 0.5 * std::cos(phase));
}

void fadeEnds(std::vector<float>& samples, std::size_t in, std::size_t out) {
  for (std::size_t i = 0; i < std::min(in, samples.size()); ++i)
    samples[i] *= fadeGain(i, in);
  assert(!samples.empty());
  const std::size_t last = samples.size() - 1;
  for (std::size_t i = 0; i < std::min(out, samples.size()); ++i) {
    samples[last - i] *= fadeGain(i, out);
  }
}

}  // namespace

TakeCutter::TakeCutter(const RecordingView& recording, const SlicerOptions& options)
    : rate_(recording.rate),
      preRoll_(samples(options.preRollMs)),
      left_(prepared(recording.left, recording.rate, options)),
      right_(prepared(recording.right.first(recording.left.size()), recording.rate, options)) {}

std::size_t TakeCutter::samples(double milliseconds) const {
  constexpr double longest = 3'600'000;
  return static_cast<std::size_t>(rate_ * std::clamp(milliseconds, 0.0, longest) / 1000);
}

std::optional<RecordedTake> TakeCutter::cut(const RecordedHit& hit, double longestMs,
                                            double shortestMs) const {
  assert(hit.onset <= left_.size());
  const std::size_t available = std::min(hit.gapAfter, left_.size() - hit.onset);
  const bool isLast = hit.onset + hit.gapAfter >= left_.size();
  const std::size_t clear = isLast ? 0 : samples(clearOfNextMs);
  const std::size_t room = available > clear ? available - clear : 0;
  const std::size_t length = std::min(room, samples(longestMs));
  if (length == 0 || length < samples(shortestMs)) return std::nullopt;

  const std::size_t lead = std::min(preRoll_, hit.onset);
  const auto begin = static_cast<std::ptrdiff_t>(hit.onset - lead);
  const auto end = static_cast<std::ptrdiff_t>(hit.onset + length);
  RecordedTake take;
  take.left.assign(left_.begin() + begin, left_.begin() + end);
  take.right.assign(right_.begin() + begin, right_.begin() + end);
  const std::size_t fadeOut = std::min(samples(fadeOutMs), length / 2 + 1);
  fadeEnds(take.left, lead, fadeOut);
  fadeEnds(take.right, lead, fadeOut);
  take.level = takeLevel(take, rate_);
  return take;
}

float takeLevel(const RecordedTake& take, double rate) {
  const std::size_t length =
      std::min(take.left.size(), static_cast<std::size_t>(levelSeconds * rate));
  double sum = 0;
  for (std::size_t i = 0; i < length; ++i) {
    sum += static_cast<double>(take.left[i]) * static_cast<double>(take.left[i]) +
           static_cast<double>(take.right[i]) * static_cast<double>(take.right[i]);
  }
  return length > 0 ? static_cast<float>(std::sqrt(sum / (2.0 * static_cast<double>(length))))
                    : 0.0f;
}

}  // namespace tobrin
