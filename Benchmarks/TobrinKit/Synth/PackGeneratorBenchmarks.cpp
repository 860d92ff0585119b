// What the starter packs cost. Goal: all five with their files in under 300 ms on two cores.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "Building/WAVWriter.h"
#include "Synth/KeySynth.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

/// The argument is the number of threads.
void allStarterPacks(benchmark::State& state) {
  const auto folder = std::filesystem::temp_directory_path() / "tobrin-generation-benchmark";
  for (auto _ : state)
    for (const SynthProfile& profile : SynthProfile::starterPacks())
      PackGenerator::generate(profile, folder, static_cast<unsigned>(state.range(0)));
  std::filesystem::remove_all(folder);
}
BENCHMARK(allStarterPacks)
    ->Arg(1)
    ->Arg(2)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

void longestTake(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(
        KeySynth::render(KeyGroup::enter, Tier::slam, 0, SynthProfile::typewriter()));
}
BENCHMARK(longestTake)->Unit(benchmark::kMicrosecond);

void encodeOneSecondStereo(benchmark::State& state) {
  const std::vector<float> channel(48'000, 0.1f);
  for (auto _ : state)
    benchmark::DoNotOptimize(WAVWriter::encode(channel, channel, 48'000));
}
BENCHMARK(encodeOneSecondStereo)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tobrin
