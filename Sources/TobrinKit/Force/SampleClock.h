/// Gives samples that are read in batches a time on the reader's clock, though the origin of their
/// own time stamps is not known. Stamps on that clock are used as they are; those of a counter that
/// runs at the clock's pace are shifted onto it; all others, and the first few, are replaced by the
/// time of reading. Thread: sensor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tobrin {

class SampleClock {
 public:
  enum class Origin {
    reading,  ///< no stamp is believed
    clock,    ///< stamps are on the reader's clock
    counter,  ///< stamps count nanoseconds from their own origin
  };

  /// The time of one sample in ticks: never after `readTime`, never before the sample placed last.
  /// `stamp` in nanoseconds; `newer` says how many samples of the same read came later.
  uint64_t place(std::optional<int64_t> stamp, uint64_t readTime, std::size_t newer);

  [[nodiscard]] Origin origin() const { return origin_; }

 private:
  void judge(int64_t stamp, uint64_t readTime);
  void startOver(int64_t stamp, uint64_t readTime);
  void weighEvidence(int64_t stamp, uint64_t readTime);
  void followCounter(int64_t delay, uint64_t readTime);
  void followPace(uint64_t readTime);

  Origin origin_ = Origin::reading;
  uint64_t last_ = 0;  // placed last
  // Evidence for the origin, since the last contradiction.
  std::size_t reads_ = 0;
  std::size_t onClock_ = 0;  // of these, stamps close behind the clock
  int64_t firstStamp_ = 0;
  uint64_t firstRead_ = 0;
  int64_t shift_ = 0;  // ticks - stamp at the smallest delay seen
  uint64_t shiftedAt_ = 0;
  // Pace of the samples, for batches without stamps.
  uint64_t lastRead_ = 0;
  double interval_ = 0;  // ticks
  std::size_t placedOfRead_ = 0;
};

}  // namespace tobrin
