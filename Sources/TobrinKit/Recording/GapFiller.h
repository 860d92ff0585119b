/// Puts recorded blocks into one run without a gap: where the times of blocks say that sound was
/// lost, as much silence takes its place, so that the place of a sample stays its time. A single
/// late block is no loss, as a busy machine reports one late and the next in time.
/// Thread: any, one at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace tobrin {

class GapFiller final {
 public:
  /// Receives interleaved frames of `channels` channels.
  using Sink = std::function<void(std::span<const float>)>;

  GapFiller(double rate, std::size_t channels, Sink sink);

  /// `time` of the first frame in ns; blocks come in order.
  void add(int64_t time, std::span<const float> interleaved);
  /// Hands on what is still held back.
  void flush();

  /// When the first frame of all was; nothing before a block came. The same clock as `add`.
  [[nodiscard]] std::optional<int64_t> firstTime() const { return firstTime_; }

  /// When the next frame is due, by the same clock; 0 before a block came.
  [[nodiscard]] int64_t dueTime() const;

 private:
  struct Held {
    double lateness;  // s
    std::vector<float> samples;
  };
  [[nodiscard]] double secondsOf(std::span<const float> interleaved) const;
  void handOn(std::span<const float> interleaved);
  void fillGap();
  [[nodiscard]] double latenessOf(int64_t time) const;

  // fixed after construction
  const double rate_;
  const std::size_t channels_;
  const Sink sink_;

  std::optional<int64_t> firstTime_;
  double expected_ = 0;  // s after the first time: when the next frame is due
  std::vector<Held> held_;
};

}  // namespace tobrin
