#include "Support/Interleaved.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace tobrin {

namespace {

double secondsFor(const Contestant& contestant, std::size_t repetitions) {
  const auto start = std::chrono::steady_clock::now();
  contestant.run(repetitions);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Also the warm-up: the code and its data are in place when the rounds begin.
std::size_t repetitionsFor(const Contestant& contestant, double seconds) {
  for (std::size_t repetitions = 1;; repetitions *= 2) {
    const double taken = secondsFor(contestant, repetitions);
    if (taken < seconds / 2) continue;
    return std::max<std::size_t>(
        1,
        static_cast<std::size_t>(std::lround(static_cast<double>(repetitions) * seconds / taken)));
  }
}

Timing summary(std::vector<double> times) {
  std::ranges::sort(times);
  const auto at = [&](double part) {
    return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
  };
  return {.median = at(0.5), .spread = (at(0.75) - at(0.25)) / at(0.5)};
}

}  // namespace

std::vector<Timing> timeInterleaved(const std::vector<Contestant>& contestants,
                                    const InterleavedOptions& options) {
  std::vector<std::size_t> repetitions;
  repetitions.reserve(contestants.size());
  for (const Contestant& contestant : contestants)
    repetitions.push_back(repetitionsFor(contestant, options.secondsARun));
  std::vector<std::vector<double>> times(contestants.size());
  for (std::size_t round = 0; round < options.rounds; ++round) {
    for (std::size_t i = 0; i < contestants.size(); ++i) {
      const double taken = secondsFor(contestants[i], repetitions[i]);
      times[i].push_back(taken / static_cast<double>(repetitions[i]));
    }
  }
  std::vector<Timing> timings;
  timings.reserve(times.size());
  for (std::vector<double>& series : times)
    timings.push_back(summary(std::move(series)));
  return timings;
}

}  // namespace tobrin
