// Slicing of a long recording: multiples of real time on one thread, and memory.
#include <sys/resource.h>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

#include "Base/SplitMix64.h"
#include "Building/RecordingSlicer.h"
#include "Support/Interleaved.h"
#include "Support/Report.h"

namespace tobrin {
namespace {

constexpr double rate = 48'000;

void addStroke(std::vector<float>& samples, double at, double amplitude) {
  const auto start = static_cast<std::size_t>(at * rate);
  for (std::size_t n = 0; start + n < samples.size() && n < 4800; ++n) {
    const double t = static_cast<double>(n) / rate;
    samples[start + n] += static_cast<float>(amplitude * std::exp(-t / 0.008) *
                                             std::sin(2 * std::numbers::pi * 1500 * t));
  }
}

/// Typing over noise, each press followed by a softer release.
std::vector<float> typing(double seconds) {
  SplitMix64 rng(7);
  std::vector<float> samples(static_cast<std::size_t>(seconds * rate));
  for (float& x : samples)
    x = static_cast<float>(1e-4 * rng.signedUnit());
  double at = 0.5;
  while (at < seconds - 1) {
    const double amplitude = 0.1 * std::pow(10, 9 * rng.signedUnit() / 20);
    addStroke(samples, at, amplitude);
    addStroke(samples, at + 0.09, amplitude / 5);
    at += 0.2 + 0.1 * rng.unit();
  }
  return samples;
}

/// The most memory the process ever held, recording and program included: to be called before
/// anything larger was held.
void memoryOfTenMinutes(Report& report) {
  const std::vector<float> left = typing(600);
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): a recording of two channels
  const std::vector<float> right = left;
  (void)sliceRecording(left, right, rate, {});
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  constexpr double bytesAUnit = 1024;
  const double perFrame =
      static_cast<double>(usage.ru_maxrss) * bytesAUnit / static_cast<double>(left.size());
  report.add(Figure::under("memory of slicing 10 minutes", perFrame, "bytes a frame", 60, 0));
}

/// Returns whether the recording was sliced at all.
bool twoMinutes(Report& report) {
  constexpr double seconds = 120;
  const std::vector<float> recording = typing(seconds);
  std::size_t hits = 0;
  const auto timings = timeInterleaved(
      {contestant("tobrin",
                  [&] { hits = sliceRecording(recording, recording, rate, {}).hits.size(); })},
      {.rounds = 7});
  constexpr double goal = 300;
  report.add(Figure::over("slicing of 2 minutes of typing", seconds / timings[0].median,
                          "x real time", goal, timings[0].spread));
  return hits > 500;
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  tobrin::memoryOfTenMinutes(report);
  if (tobrin::twoMinutes(report)) return 0;
  (void)std::fputs("slicing: keystrokes were missed\n", stderr);
  return 1;
}
