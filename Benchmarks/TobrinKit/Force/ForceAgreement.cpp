// How much of the force picture slower sensors keep: synthetic typing (a seeded model, no
// recording) is replayed at falling rates, and the tier of each key is compared with the one found
// at 1000 Hz. Prints a table in Markdown.
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "Engine/Conductor.h"
#include "Engine/ForceReplay.h"
#include "Support/TypedTrace.h"

namespace tobrin {
namespace {

constexpr std::array<uint64_t, 5> seeds = {1, 2, 3, 4, 5};
constexpr std::size_t keysPerTrace = 400;
constexpr float sensitivity = 1;

/// The last stage of every key.
std::vector<ForceStage> finalStages(const MotionTrace& motion, const KeyTrace& keys) {
  std::vector<ForceStage> stages(keys.keys.size());
  for (const ReplayedStage& replayed : replayForce(motion, keys, sensitivity))
    if (replayed.stage.delayMs == Conductor::refineAtMs.back())
      stages[replayed.key] = replayed.stage;
  return stages;
}

struct Agreement {
  int keys = 0;
  int sameTier = 0;
  int withinOne = 0;
  int counted = 0;
  double distance = 0;  // of positions, summed

  void add(const ForceStage& slow, const ForceStage& fast) {
    const long tiers = std::labs(std::lround(slow.position) - std::lround(fast.position));
    ++keys;
    sameTier += tiers == 0 ? 1 : 0;
    withinOne += tiers <= 1 ? 1 : 0;
    counted += slow.counted ? 1 : 0;
    distance += std::abs(static_cast<double>(slow.position - fast.position));
  }

  void print(double hz) const {
    const auto percent = [this](int count) { return 100.0 * count / keys; };
    std::printf("| %.0f Hz | %.1f %% | %.1f %% | %.2f | %.1f %% |\n", hz, percent(sameTier),
                percent(withinOne), distance / keys, percent(counted));
  }
};

void compareRates() {
  constexpr std::array<double, 5> rates = {1000, 400, 200, 100, 50};
  std::array<Agreement, rates.size()> agreements;
  for (const uint64_t seed : seeds) {
    const TypedTrace typed(seed, keysPerTrace);
    const std::vector<ForceStage> reference = finalStages(typed.motion, typed.keys);
    for (std::size_t r = 0; r < rates.size(); ++r) {
      const auto stages = finalStages(TypedTrace::resampled(typed.motion, rates[r]), typed.keys);
      for (std::size_t key = 0; key < stages.size(); ++key)
        agreements[r].add(stages[key], reference[key]);
    }
  }
  std::printf("%zu synthetic keystrokes\n\n", seeds.size() * keysPerTrace);
  std::printf("| rate | same tier | at most one off | mean distance | impact found |\n");
  std::printf("| --- | --- | --- | --- | --- |\n");
  for (std::size_t r = 0; r < rates.size(); ++r)
    agreements[r].print(rates[r]);
}

}  // namespace
}  // namespace tobrin

int main() {
  tobrin::compareRates();
}
