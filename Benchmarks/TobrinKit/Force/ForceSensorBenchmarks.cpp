// What one report and one question cost. Goals: a report under 60 ns, a window under 400 ns.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "Force/ForceClassifier.h"
#include "Force/ForceSensor.h"
#include "Force/MotionReport.h"

namespace tobrin {
namespace {

constexpr uint64_t interval = 1'000'000;  // 1000 Hz

std::vector<MotionReport> restlessReports() {
  std::vector<MotionReport> reports;
  for (int i = 0; i < 64; ++i)
    reports.push_back(encodeMotionReport({0.001 * std::sin(i), 0.002 * std::cos(3 * i), 1}));
  return reports;
}

void ingestReport(benchmark::State& state) {
  const std::vector<MotionReport> reports = restlessReports();
  ForceSensor sensor(nullptr);
  uint64_t time = 0;
  for (auto _ : state) {
    time += interval;
    sensor.ingest(reports[time / interval % reports.size()], time);
  }
}
BENCHMARK(ingestReport);

// The window around a key as the last refinement asks for it, 16 ms after the key.
void windowAroundAKey(benchmark::State& state) {
  const std::vector<MotionReport> reports = restlessReports();
  ForceSensor sensor(nullptr);
  uint64_t time = 0;
  for (std::size_t i = 0; i < 2 * ForceSensor::capacity; ++i)
    sensor.ingest(reports[i % reports.size()], time += interval);
  const uint64_t key = time - 16 * interval;
  for (auto _ : state)
    benchmark::DoNotOptimize(sensor.window(key - 12 * interval, key + 14 * interval));
}
BENCHMARK(windowAroundAKey);

void classifyAndCalibrate(benchmark::State& state) {
  ForceClassifier classifier;
  float peak = 0.01f;
  for (auto _ : state) {
    peak = peak < 0.05f ? peak * 1.1f : 0.01f;
    benchmark::DoNotOptimize(ForceClassifier::tierPosition(classifier.relative(peak, 0.002f)));
    classifier.record(peak);
  }
}
BENCHMARK(classifyAndCalibrate);

}  // namespace
}  // namespace tobrin
