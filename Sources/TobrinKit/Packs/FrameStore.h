/// Collects decoded frames into the channel blocks of one sound. Every frame is taken off an
/// allowance before memory is taken for it. One thread at a time. Thread: any.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "Packs/FrameAllowance.h"
#include "Packs/SampleBuffer.h"

namespace tobrin {

/// A filter would spread a sample that is not finite over its whole length, and the mixer has no
/// use for it either. Subnormal ones, a filter's last ringing, would cost the mixer fifty times the
/// time of the same sound without them.
inline float soundOrZero(float sample) {
  using Limits = std::numeric_limits<float>;
  const float size = std::fabs(sample);
  return size >= Limits::min() && size <= Limits::max() ? sample : 0.0f;
}

class FrameStore final {
 public:
  FrameStore(bool stereo, FrameAllowance& allowance) : stereo_(stereo), allowance_(allowance) {}
  /// Gives the allowance back where `finish` was not reached.
  ~FrameStore();
  FrameStore(const FrameStore&) = delete;
  FrameStore& operator=(const FrameStore&) = delete;

  /// Takes an announced length off the allowance at once (`AllowanceExceeded` where it does not
  /// suffice), and memory for it, but at most for `credible` frames.
  void expect(uint64_t frames, uint64_t credible);

  /// Adds frames, made finite; `right` is null for a mono sound. Throws `AllowanceExceeded`,
  /// `std::bad_alloc`.
  void append(const float* left, const float* right, std::size_t frames);

  /// The blocks; what was announced and never came goes back to the allowance.
  SampleBuffer::Blocks finish();

 private:
  void setCapacity(std::size_t capacity);

  bool stereo_;
  FrameAllowance& allowance_;
  uint64_t taken_ = 0;  // frames off the allowance
  std::size_t capacity_ = 0;
  SampleBuffer::Blocks blocks_;
};

}  // namespace tobrin
