/// The newest impact magnitudes with their times. Not guarded: the force sensor holds its lock
/// around every call. All memory is taken by the constructor. Thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tobrin {

/// The strongest impact of a time window.
struct ForceWindow {
  float peak = 0;         ///< g
  uint64_t peakTime = 0;  ///< host ticks; 0 where every sample is 0
  int64_t samples = 0;    ///< counted in the window
  uint64_t latest = 0;    ///< time of the newest sample in the ring

  bool operator==(const ForceWindow&) const = default;
};

/// One impact magnitude.
struct ForceSample {
  uint64_t time = 0;  ///< host ticks
  float value = 0;    ///< g

  bool operator==(const ForceSample&) const = default;
};

class ForceRing {
 public:
  static constexpr std::size_t capacity = 4096;  ///< samples; about 4 s at 1000 a second

  ForceRing() : samples_(capacity) {}

  void push(ForceSample sample) {
    samples_[next_] = sample;
    next_ = (next_ + 1) % capacity;
    if (filled_ < capacity) ++filled_;
    latest_ = sample.time;
  }

  /// The strongest sample with from <= time <= to, the newest among equals; nothing without one.
  [[nodiscard]] std::optional<ForceWindow> window(uint64_t from, uint64_t to) const;

  /// All samples with from <= time <= to, oldest first.
  [[nodiscard]] std::vector<ForceSample> between(uint64_t from, uint64_t to) const;

  [[nodiscard]] uint64_t latest() const { return latest_; }  ///< 0 before the first sample

 private:
  template <typename Visit>
  void walkBack(uint64_t from, uint64_t to, Visit visit) const;

  std::vector<ForceSample> samples_;  // fixed size
  std::size_t next_ = 0;              // slot written next
  std::size_t filled_ = 0;
  uint64_t latest_ = 0;
};

}  // namespace tobrin
