// What one report of the sensor costs, and one question for the strongest impact around a key.
#include <cmath>
#include <vector>

#include "Force/ForceSensor.h"
#include "Force/MotionReport.h"
#include "Support/Interleaved.h"
#include "Support/Report.h"

namespace tobrin {
namespace {

constexpr uint64_t interval = 1'000'000;  // 1000 Hz
constexpr double nanoseconds = 1e9;

/// Keeps the compiler from leaving out what nobody reads.
template <typename Value>
void keep(const Value& value) {
  asm volatile("" : : "g"(&value) : "memory");
}

std::vector<MotionReport> restlessReports() {
  std::vector<MotionReport> reports;
  reports.reserve(64);
  for (int i = 0; i < 64; ++i)
    reports.push_back(encodeMotionReport({0.001 * std::sin(i), 0.002 * std::cos(3 * i), 1}));
  return reports;
}

void run(Report& report) {
  const std::vector<MotionReport> reports = restlessReports();
  ForceSensor sensor(nullptr);
  uint64_t time = 0;
  const auto ingest = [&] {
    time += interval;
    sensor.ingest(reports[time / interval % reports.size()], time);
  };
  for (std::size_t i = 0; i < ForceSensor::capacity; ++i)
    ingest();
  // As the last look at a key asks for it, 16 ms after the key.
  const auto window = [&] {
    const uint64_t key = time - 16 * interval;
    keep(sensor.window(key - 12 * interval, key + 14 * interval));
  };
  const auto timings =
      timeInterleaved({contestant("report", ingest), contestant("window", window)});
  report.add(Figure::under("force sensor, one report", timings[0].median * nanoseconds, "ns", 60,
                           timings[0].spread));
  report.add(Figure::under("force sensor, window around a key", timings[1].median * nanoseconds,
                           "ns", 400, timings[1].spread));
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  tobrin::run(report);
}
