/// Plays a recorded trace as a motion source, so that everything behind the sensor can be run
/// without one. Thread: sensor.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "Force/MotionTrace.h"
#include "Force/TraceClock.h"

namespace tobrin {

class TraceSource final : public MotionSource {
 public:
  enum class Times {
    present,   ///< starts with `open`, repeats from its start, stamped with the present
    recorded,  ///< each sample once, at its own time on the clock; what has passed is left out
  };

  TraceSource(MotionTrace trace, std::string name, std::shared_ptr<TraceClock> clock, Times times);

  /// Reads `file` at the first `open`; where that fails, `problem` says why.
  TraceSource(const std::filesystem::path& file, std::shared_ptr<TraceClock> clock, Times times);

  bool open() override;
  void run(const Sink& sink) override;
  void close() override {}
  void interrupt() override;
  [[nodiscard]] std::string problem() const override { return problem_; }
  [[nodiscard]] std::string description() const override { return "motion trace " + name_; }

 private:
  void repeat(const Sink& sink);
  void playOnce(const Sink& sink);

  // Fixed after construction.
  std::string name_;
  std::shared_ptr<TraceClock> clock_;  // shared with the driver of virtual time
  Times times_;
  // Sensor thread.
  std::optional<MotionTrace> trace_;
  std::string problem_;
  uint64_t opened_ = 0;  // on the clock
};

}  // namespace tobrin
