#include "Recording/GapFiller.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace tobrin {

namespace {

constexpr double late = 0.003;        // s; less than a cycle of any sound server
constexpr std::size_t certainty = 4;  // late blocks in a row are a loss
constexpr double tracking = 0.02;     // of a block's lateness, to follow the drift of two clocks
constexpr double longestGap = 600;    // s; a clock that jumps must not fill the memory
constexpr double nanoseconds = 1e9;

}  // namespace

GapFiller::GapFiller(double rate, std::size_t channels, Sink sink)
    : rate_(rate), channels_(channels), sink_(std::move(sink)) {
  assert(rate > 0 && channels > 0 && sink_);
}

void GapFiller::add(int64_t time, std::span<const float> interleaved) {
  if (interleaved.empty()) return;
  if (!firstTime_) firstTime_ = time;
  const double lateness = latenessOf(time);
  if (lateness < late) {
    flush();
    expected_ += tracking * std::max(lateness, -late);
    handOn(interleaved);
    return;
  }
  held_.push_back({lateness, {interleaved.begin(), interleaved.end()}});
  expected_ += secondsOf(interleaved);
  if (held_.size() == certainty) fillGap();
}

void GapFiller::flush() {
  for (const Held& block : std::exchange(held_, {}))
    sink_(block.samples);
}

int64_t GapFiller::dueTime() const {
  return firstTime_.value_or(0) + static_cast<int64_t>(expected_ * nanoseconds);
}

double GapFiller::secondsOf(std::span<const float> interleaved) const {
  const std::size_t frames = interleaved.size() / channels_;
  return static_cast<double>(frames) / rate_;
}

void GapFiller::handOn(std::span<const float> interleaved) {
  expected_ += secondsOf(interleaved);
  sink_(interleaved);
}

void GapFiller::fillGap() {
  const auto least = std::min_element(
      held_.begin(), held_.end(),
      [](const Held& one, const Held& other) { return one.lateness < other.lateness; });
  const double gap = std::min(least->lateness, longestGap);
  const auto frames = static_cast<std::size_t>(std::llround(gap * rate_));
  sink_(std::vector<float>(frames * channels_));
  // Of what is longer than the longest gap, the rest is given up.
  expected_ += least->lateness;
  flush();
}

double GapFiller::latenessOf(int64_t time) const {
  return static_cast<double>(time - *firstTime_) / nanoseconds - expected_;
}

}  // namespace tobrin
