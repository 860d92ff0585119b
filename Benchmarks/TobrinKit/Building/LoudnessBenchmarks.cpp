// Integrated loudness beside libebur128, which measures the same signal in turn.
// Goal: "ratio" (our time to its) at most 1.
#include <benchmark/benchmark.h>
#include <ebur128.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "Building/Loudness.h"
#include "Engine/SplitMix64.h"

namespace tobrin {
namespace {

constexpr unsigned long rate = 48'000;

struct Programme {
  std::vector<float> left, right, interleaved;
};

/// Noise in bursts of a second, with pauses of digital silence.
Programme programme(std::size_t seconds) {
  Programme result;
  SplitMix64 rng(7);
  for (std::size_t frame = 0; frame < seconds * rate; ++frame) {
    const double gain = frame / rate % 3 == 2 ? 0 : 0.1;
    result.left.push_back(static_cast<float>(gain * rng.signedUnit()));
    result.right.push_back(static_cast<float>(gain * rng.signedUnit()));
    result.interleaved.push_back(result.left.back());
    result.interleaved.push_back(result.right.back());
  }
  return result;
}

double libraryLoudness(const Programme& programme) {
  ebur128_state* library = ebur128_init(2, rate, EBUR128_MODE_I);
  double lufs = 0;
  ebur128_add_frames_float(library, programme.interleaved.data(), programme.left.size());
  ebur128_loudness_global(library, &lufs);
  ebur128_destroy(&library);
  return lufs;
}

template <typename Work>
double seconds(Work work, double& result) {
  const auto start = std::chrono::steady_clock::now();
  result = work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void tenMinutesStereo(benchmark::State& state) {
  const Programme signal = programme(600);
  std::vector<double> ours, theirs;
  for (auto _ : state) {
    double measured = 0;
    double expected = 0;
    ours.push_back(seconds(
        [&] { return Loudness::integrated(signal.left, signal.right, double{rate}); }, measured));
    theirs.push_back(seconds([&] { return libraryLoudness(signal); }, expected));
    if (std::fabs(measured - expected) > 0.02) throw std::runtime_error("they disagree");
    state.SetIterationTime(ours.back());
  }
  state.counters["libebur128_ms"] = 1000 * median(theirs);
  state.counters["ratio"] = median(ours) / median(theirs);
}
BENCHMARK(tenMinutesStereo)->UseManualTime()->Iterations(9)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tobrin
