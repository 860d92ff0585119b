#include "OnsetDetector.h"

#include <algorithm>

namespace tobrin::testing {
namespace {

// frames at 48 kHz
constexpr size_t ringingFrames = 240;
constexpr size_t holdOffFrames = 720;
constexpr size_t peakFrames = 480;
constexpr float rise = 2.0F;

}  // namespace

void OnsetDetector::add(float magnitude) {
  while (!window_.empty() && window_.front().first + ringingFrames < frame_)
    window_.pop_front();
  const bool free = onsets_.empty() || frame_ - onsets_.back().frame >= holdOffFrames;
  if (free && magnitude > floor_ && magnitude > rise * ringing())
    onsets_.push_back({frame_, magnitude});
  if (!onsets_.empty() && frame_ - onsets_.back().frame < peakFrames)
    onsets_.back().peak = std::max(onsets_.back().peak, magnitude);
  remember(magnitude);
  ++frame_;
}

void OnsetDetector::remember(float magnitude) {
  while (!window_.empty() && window_.back().second <= magnitude)
    window_.pop_back();
  window_.emplace_back(frame_, magnitude);
}

}  // namespace tobrin::testing
