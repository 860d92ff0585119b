#include "Diagnostics/ProbeReport.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>

#include "Base/MachTime.h"
#include "Input/KeyLayout.h"

namespace tobrin::probe {
namespace {

enum class Sign { minusOnly, always };

/// With a decimal point in every locale: programs read the files.
std::string fixed(double number, int decimals, Sign sign = Sign::minusOnly) {
  std::array<char, 400> text{};  // the longest double has 309 digits in front
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number,
                                          std::chars_format::fixed, decimals);
  assert(error == std::errc());
  std::string digits(text.data(), end);
  return sign == Sign::always && !digits.starts_with('-') ? '+' + digits : digits;
}

std::string fixed(float number, int decimals) {
  return fixed(static_cast<double>(number), decimals);
}

std::string offsets(const std::vector<Hit>& hits) {
  std::vector<double> values;
  values.reserve(hits.size());
  for (const Hit& hit : hits)
    values.push_back(hit.offsetMs);
  const auto at = [&](double p) { return fixed(percentile(values, p), 1, Sign::always); };
  return "Impact time vs key event (ms):  p10 " + at(0.1) + "   median " + at(0.5) + "   p90 " +
         at(0.9);
}

std::string peakLine(const std::vector<float>& peaks) {
  const auto at = [&](double p) { return fixed(percentile(peaks, p), 4); };
  return "Impact peak (g):  p10 " + at(0.1) + "   median " + at(0.5) + "   p90 " + at(0.9) +
         "   max " + at(1);
}

}  // namespace

std::optional<Hit> hitOf(uint16_t code, uint64_t time, const std::vector<ForceSample>& samples) {
  if (samples.empty()) return std::nullopt;
  const auto strongest = std::max_element(
      samples.begin(), samples.end(),
      [](const ForceSample& a, const ForceSample& b) { return a.value < b.value; });
  Hit hit{rawValue(keyGroupOf(code)), machDelta(strongest->time, time), strongest->value, {}};
  for (const ForceSample& sample : samples)
    hit.trace.push_back({machDelta(sample.time, time), sample.value});
  return hit;
}

template <typename Value>
Value percentile(std::vector<Value> values, double p) {
  assert(!values.empty());
  std::sort(values.begin(), values.end());
  const auto last = static_cast<std::ptrdiff_t>(values.size()) - 1;
  const auto wanted = static_cast<std::ptrdiff_t>(p * static_cast<double>(last));
  return values[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(wanted, 0, last))];
}
template double percentile(std::vector<double> values, double p);
template float percentile(std::vector<float> values, double p);

int percentInWindow(const std::vector<Hit>& hits) {
  constexpr double windowStartMs = -12;
  constexpr double windowEndMs = 14;
  const auto inside = std::count_if(hits.begin(), hits.end(), [](const Hit& hit) {
    return hit.offsetMs >= windowStartMs && hit.offsetMs <= windowEndMs;
  });
  return static_cast<int>(inside * 100 / std::max(std::ssize(hits), std::ptrdiff_t{1}));
}

std::string report(const std::vector<Hit>& hits, const Summary& summary) {
  std::vector<float> peaks;
  peaks.reserve(hits.size());
  for (const Hit& hit : hits)
    peaks.push_back(hit.peak);
  const double ratio = static_cast<double>(percentile(peaks, 0.5)) /
                       std::max(static_cast<double>(summary.noiseFloor), 1e-9);
  return "Keystrokes: " + std::to_string(hits.size()) +
         "   sensor: " + fixed(summary.reportsPerSecond, 0) +
         " Hz   noise floor: " + fixed(summary.noiseFloor, 4) + " g\n" + offsets(hits) + "\n" +
         peakLine(peaks) + "\nSignal to noise (median peak / noise): " + fixed(ratio, 1) +
         "x\nImpacts inside the engine's [-12, +14] ms window: " +
         std::to_string(percentInWindow(hits)) + "%\n";
}

std::string hitsCsv(const std::vector<Hit>& hits) {
  std::string csv = "index,group,offset_ms,peak_g\n";
  for (std::size_t i = 0; i < hits.size(); ++i)
    csv += std::to_string(i) + "," + std::string(hits[i].group) + "," + fixed(hits[i].offsetMs, 3) +
           "," + fixed(hits[i].peak, 5) + "\n";
  return csv;
}

std::string tracesCsv(const std::vector<Hit>& hits) {
  std::string csv = "index,dt_ms,value_g\n";
  for (std::size_t i = 0; i < hits.size(); ++i)
    for (const Hit::Point& point : hits[i].trace)
      csv +=
          std::to_string(i) + "," + fixed(point.offsetMs, 3) + "," + fixed(point.value, 5) + "\n";
  return csv;
}

}  // namespace tobrin::probe
