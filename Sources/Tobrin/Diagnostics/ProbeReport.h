/// What the force probe found, as text and as CSV. Plain functions over plain values. Thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Base/KeyEvent.h"
#include "Force/ForceRing.h"

namespace tobrin::probe {

/// How one key-down showed up on the sensor.
struct Hit {
  struct Point {
    double offsetMs = 0;  ///< from the key-down
    float value = 0;      ///< g

    bool operator==(const Point&) const = default;
  };

  std::string_view group;  ///< the key's group by name
  double offsetMs = 0;     ///< of the peak, from the key-down
  float peak = 0;          ///< g
  std::vector<Point> trace;
};

/// The samples around a key-down that make its trace.
inline constexpr double leadMs = 40;
inline constexpr double lagMs = 60;

/// The hit of a key-down at `time` in the samples around it; nothing without a sample.
[[nodiscard]] std::optional<Hit> hitOf(uint16_t code, uint64_t time,
                                       const std::vector<ForceSample>& samples);

/// The element that a share `p` (0 to 1) of the sorted list lies below. `values` is not empty.
template <typename Value>
[[nodiscard]] Value percentile(std::vector<Value> values, double p);

/// The hits whose peak lies in the window around a key that the engine reads, in whole per cent,
/// rounded down.
[[nodiscard]] int percentInWindow(const std::vector<Hit>& hits);

struct Summary {
  double reportsPerSecond = 0;
  float noiseFloor = 0;  ///< g
};

/// The lines of the report; `hits` is not empty.
[[nodiscard]] std::string report(const std::vector<Hit>& hits, const Summary& summary);

/// One line a hit.
[[nodiscard]] std::string hitsCsv(const std::vector<Hit>& hits);

/// One line a sample of every hit.
[[nodiscard]] std::string tracesCsv(const std::vector<Hit>& hits);

}  // namespace tobrin::probe
