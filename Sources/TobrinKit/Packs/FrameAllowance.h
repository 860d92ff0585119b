/// How many frames of decoded audio may still be taken. Shared by the threads that decode one pack,
/// so that together they never hold more than its budget. Thread: any.
#pragma once

#include <atomic>
#include <cstdint>

namespace tobrin {

/// What one frame counts against a budget: two channels of 32-bit float, mono files included.
inline constexpr uint64_t bytesPerFrame = 8;

/// Thrown by the decoder where the allowance does not suffice.
struct AllowanceExceeded {};

class FrameAllowance final {
 public:
  explicit FrameAllowance(uint64_t frames) : left_(frames) {}

  /// Takes that many frames off, or throws `AllowanceExceeded` and takes none.
  void take(uint64_t frames) {
    // Relaxed: the count guards no other memory.
    uint64_t left = left_.load(std::memory_order_relaxed);
    do {
      if (frames > left) throw AllowanceExceeded();
    } while (!left_.compare_exchange_weak(left, left - frames, std::memory_order_relaxed));
  }

  void giveBack(uint64_t frames) { left_.fetch_add(frames, std::memory_order_relaxed); }

 private:
  std::atomic<uint64_t> left_;
};

}  // namespace tobrin
