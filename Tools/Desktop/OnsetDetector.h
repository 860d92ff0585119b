/// Finds where sounds begin in a recording. Thread: any.
#pragma once

#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

namespace tobrin::testing {

struct Onset {
  size_t frame = 0;
  float peak = 0;  // of the 10 ms from there
};

/// A sound begins at the first sample that is above the floor and at least twice the loudest of the
/// 5 ms before it (6 dB over what still rings), 15 ms or more after the last beginning. A sound
/// out of silence is therefore found at its first sample above the floor, to the sample; one that
/// starts while another rings loudly is found where it stands out.
class OnsetDetector final {
 public:
  explicit OnsetDetector(float floor) : floor_(floor) {}

  /// The next sample: the larger magnitude of the channels.
  void add(float magnitude);

  [[nodiscard]] const std::vector<Onset>& onsets() const { return onsets_; }

 private:
  [[nodiscard]] float ringing() const { return window_.empty() ? 0.0F : window_.front().second; }
  void remember(float magnitude);

  const float floor_;
  size_t frame_ = 0;
  std::deque<std::pair<size_t, float>>
      window_;  // falling maxima of the last 5 ms, the largest first
  std::vector<Onset> onsets_;
};

}  // namespace tobrin::testing
