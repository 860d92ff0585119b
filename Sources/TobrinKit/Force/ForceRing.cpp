#include "Force/ForceRing.h"

#include <algorithm>

namespace tobrin {

// From the newest sample to the first one older than `from`. A clock that jumps back ends the walk
// there, so that samples of the wrong time are never taken for an impact.
template <typename Visit>
void ForceRing::walkBack(uint64_t from, uint64_t to, Visit visit) const {
  std::size_t slot = next_;
  for (std::size_t i = 0; i < filled_; ++i) {
    slot = (slot + capacity - 1) % capacity;
    const ForceSample& sample = samples_[slot];
    if (sample.time < from) return;
    if (sample.time <= to) visit(sample);
  }
}

std::optional<ForceWindow> ForceRing::window(uint64_t from, uint64_t to) const {
  ForceWindow found;
  walkBack(from, to, [&](const ForceSample& sample) {
    ++found.samples;
    if (sample.value > found.peak) {
      found.peak = sample.value;
      found.peakTime = sample.time;
    }
  });
  if (found.samples == 0) return std::nullopt;
  found.latest = latest_;
  return found;
}

std::vector<ForceSample> ForceRing::between(uint64_t from, uint64_t to) const {
  std::vector<ForceSample> found;
  walkBack(from, to, [&](const ForceSample& sample) { found.push_back(sample); });
  std::reverse(found.begin(), found.end());
  return found;
}

}  // namespace tobrin
