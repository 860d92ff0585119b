/// A recorded list of key-downs: a CSV file with the header `time_ns,code`, one line a key, times
/// in nanoseconds on the clock of the motion trace that goes with it. Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tobrin {

struct KeyTrace {
  struct KeyDown {
    uint64_t time = 0;
    uint16_t code = 0;  ///< virtual key code

    bool operator==(const KeyDown&) const = default;
  };

  static constexpr std::string_view header = "time_ns,code";

  std::vector<KeyDown> keys;  ///< in order of time

  /// Reads a list; throws `TraceError` naming the file and the line at fault.
  static KeyTrace load(const std::filesystem::path& file);
  static KeyTrace parse(std::string_view text, const std::string& name);
};

}  // namespace tobrin
