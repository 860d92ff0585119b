// How surely the sounds of a recording are given to the keys that were typed: over delay, drift,
// noise and speed, by composed recordings with the truth about them.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "ComposedKeys.h"
#include "KeyedScore.h"
#include "Recording/LiveTakes.h"
#include "Support/Report.h"

namespace tobrin {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double pressGoal = 99.5;   // % of those that nothing else covers
constexpr double releaseGoal = 99;   // %
constexpr double onsetGoal = 2;      // ms, 95 of 100
constexpr double liveGoal = 5;       // %
constexpr double stepGoal = 150;     // ms; a display may wait that long
constexpr double processorGoal = 2;  // % of the recording's length

std::vector<KeyedCondition> conditions() {
  std::vector<KeyedCondition> list;
  const auto add = [&](KeyedCondition condition) {
    condition.seed = 500 + list.size();
    list.push_back(condition);
  };
  for (const double delay : {-0.05, 0.0, 0.05, 0.15})
    add({.name = "delay " + std::to_string(std::lround(delay * 1000)) + " ms", .delay = delay});
  for (const double drift : {-200e-6, 200e-6})
    add({.name = "drift " + std::to_string(std::lround(drift * 1e6)) + " ppm, 5 min",
         .drift = drift,
         .seconds = 300});
  for (const double signal : {40.0, 30.0, 20.0})
    add({.name = "noise " + std::to_string(std::lround(signal)) + " dB below presses",
         .signalDb = signal});
  for (const double interval : {0.5, 0.15, 0.1})
    add({.name = std::to_string(std::lround(1 / interval)) + " keys a second",
         .interval = interval,
         .seconds = 120});
  add({.name = "clicks", .profile = &SynthProfile::click(), .interval = 0.15});
  add({.name = "bumps", .profile = &SynthProfile::panda(), .interval = 0.15});
  add({.name = "domes", .profile = &SynthProfile::dome(), .interval = 0.15});
  add({.name = "typewriter", .profile = &SynthProfile::typewriter(), .interval = 0.25});
  add({.name = "all at once, 10 min",
       .delay = -0.05,
       .drift = 200e-6,
       .signalDb = 20,
       .interval = 0.1,
       .seconds = 600});
  return list;
}

void measure(const KeyedCondition& condition, Report& report) {
  const ComposedKeys composed = composeKeys(condition);
  const auto begin = Clock::now();
  const KeyedTakes takes = findKeyedTakes(composed.recording);
  const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
  const KeyedScore score = scoreOf(composed, takes);
  const std::string name = "record, " + condition.name + ": ";
  report.add(Figure::over(name + "presses", 100 * score.presses, "%", pressGoal, 0));
  report.add(Figure::over(name + "releases", 100 * score.releases, "%", releaseGoal, 0));
  report.add(Figure::under(name + "wrong keys", static_cast<double>(score.wrong), "", 0, 0));
  report.add(Figure::under(name + "onset error", score.onsetErrorMs, "ms", onsetGoal, 0));
  report.add(
      Figure::under(name + "processor", 100 * seconds / condition.seconds, "%", processorGoal, 0));
}

/// What following a recording of five minutes costs while it runs, shown ten times a second.
void measureLive(Report& report) {
  constexpr std::size_t block = 480;
  constexpr std::size_t blocksPerState = 10;
  const KeyedCondition condition{.name = "live", .interval = 0.12, .seconds = 300};
  const ComposedKeys composed = composeKeys(condition);
  const auto& recording = composed.recording;
  LiveTakes live(recording.rate);
  auto key = recording.keys.begin();
  double longest = 0;
  const auto begin = Clock::now();
  for (std::size_t i = 0; (i + 1) * block <= recording.samples.size(); ++i) {
    const auto before = Clock::now();
    live.addSound(std::span(recording.samples).subspan(i * block, block));
    const auto now = static_cast<double>((i + 1) * block) / recording.rate;
    for (; key != recording.keys.end() && static_cast<double>(key->time) * 1e-9 < now; ++key)
      live.addKey(*key);
    if (i % blocksPerState == 0) static_cast<void>(live.state());
    longest = std::max(longest, std::chrono::duration<double>(Clock::now() - before).count());
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
  report.add(Figure::under("record, while it runs: processor", 100 * seconds / condition.seconds,
                           "%", liveGoal, 0));
  report.add(
      Figure::under("record, while it runs: longest step", 1000 * longest, "ms", stepGoal, 0));
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  for (const auto& condition : tobrin::conditions())
    tobrin::measure(condition, report);
  tobrin::measureLive(report);
  return report.status();
}
