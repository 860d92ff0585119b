/// A recorded accelerometer stream: a CSV file with the header `time_ns,x,y,z`, one line a sample,
/// times in nanoseconds that never go back, accelerations in g. Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "Force/MotionReport.h"

namespace tobrin {

struct MotionTrace {
  struct Sample {
    uint64_t time = 0;  ///< nanoseconds on the clock of the recording
    Acceleration acceleration;

    bool operator==(const Sample&) const = default;
  };

  static constexpr std::string_view header = "time_ns,x,y,z";

  std::vector<Sample> samples;  ///< at least two, at different times

  /// Reads a trace; throws `TraceError` naming the file and the line at fault.
  static MotionTrace load(const std::filesystem::path& file);
  static MotionTrace parse(std::string_view text, const std::string& name);

  /// Nanoseconds from one repetition of the trace to the next: its length plus one mean interval.
  [[nodiscard]] uint64_t period() const;
};

/// Writes one line of a trace.
void writeMotionSample(std::ostream& out, const MotionTrace::Sample& sample);

}  // namespace tobrin
