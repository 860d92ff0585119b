#include "Recording/LiveTakes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "ComposedKeys.h"
#include "Recording/KeyedTakes.h"
#include "Support/KeptText.h"

namespace tobrin {
namespace {

/// Plays a recording into the counter as it would come: in small blocks, keys a little late.
void play(const KeyedRecording& recording, double fromSecond, double toSecond, LiveTakes& live) {
  constexpr std::size_t block = 1001;
  constexpr int64_t late = 200'000'000;
  const auto end = static_cast<std::size_t>(toSecond * recording.rate);
  std::size_t at = live.recording().samples.size();
  auto key = recording.keys.begin();
  while (key != recording.keys.end() && static_cast<double>(key->time + late) * 1e-9 < fromSecond)
    ++key;
  while (at < std::min(end, recording.samples.size())) {
    const auto part = std::span(recording.samples).subspan(at);
    live.addSound(part.first(std::min(block, part.size())));
    at = live.recording().samples.size();
    const double now = static_cast<double>(at) / recording.rate;
    for (; key != recording.keys.end() && static_cast<double>(key->time + late) * 1e-9 < now; ++key)
      live.addKey(*key);
  }
}

std::size_t presses(const LiveState& state, KeyGroup group) {
  const auto& tiers = state.takes[index(group)];
  return std::accumulate(tiers.begin(), tiers.end(), std::size_t{0});
}

std::string describe(const LiveState& state) {
  std::string all =
      testing::line("verdict %d, peak %.3g, rms %.3g, noise %.3g, takes",
                    static_cast<int>(state.verdict), static_cast<double>(state.peak),
                    static_cast<double>(state.rms), static_cast<double>(state.noiseFloor));
  for (const KeyGroup group : allKeyGroups) {
    for (const std::size_t count : state.takes[index(group)])
      all += " " + std::to_string(count);
    all += " (" + std::to_string(state.releases[index(group)]) + ")";
  }
  return all + "\n";
}

TEST(LiveTakes, CountsWhatIsGoodWhileItComes) {
  const ComposedKeys composed = composeKeys({.delay = 0.1, .drift = 400e-6, .seconds = 40});
  LiveTakes live(composed.recording.rate);
  std::string text;
  for (double before = 0; const double second : {0.5, 2.0, 4.0, 6.0, 9.0, 12.0}) {
    play(composed.recording, std::exchange(before, second), second, live);
    text += describe(live.state());
  }
  const LiveState early = live.state();
  EXPECT_GT(presses(early, KeyGroup::space), 2u);
  play(composed.recording, 12, 40, live);
  const LiveState late = live.state();
  testing::expectKeptText(text + describe(late), "TobrinKit/Recording/live-takes.txt");
  EXPECT_GT(presses(late, KeyGroup::space), 2 * presses(early, KeyGroup::space));
  EXPECT_EQ(late.verdict, LiveVerdict::good);
  EXPECT_EQ(live.recording().keys.size(), composed.recording.keys.size());

  std::size_t good = 0;
  const auto sounds = findKeyedTakes(composed.recording).sounds;
  for (std::size_t key = 0; key < sounds.size(); ++key) {
    const RecordedKey& each = composed.recording.keys[key];
    good += each.action == KeyAction::up && each.group == KeyGroup::alpha &&
                    sounds[key].fate == KeyFate::good
                ? 1u
                : 0u;
  }
  EXPECT_NEAR(static_cast<double>(late.releases[index(KeyGroup::alpha)]), static_cast<double>(good),
              0.08 * static_cast<double>(good));
  for (const std::size_t count : late.takes[index(KeyGroup::alpha)])
    EXPECT_GE(count, 6u);
}

TEST(LiveTakes, SaysWhatIsWrongWithTheSound) {
  struct Row {
    LiveVerdict verdict;
    float gain;
    double signalDb;
    bool hasKeys = true;
  };
  const Row rows[] = {{LiveVerdict::good, 1, 50},          {LiveVerdict::tooQuiet, 0.07f, 50},
                      {LiveVerdict::tooLoud, 20, 50},      {LiveVerdict::tooNoisy, 1, 14},
                      {LiveVerdict::nothingHeard, 1, -20}, {LiveVerdict::waiting, 1, 50, false},
                      {LiveVerdict::good, 0.1f, 50},       {LiveVerdict::good, 1, 16}};
  for (const Row& row : rows) {
    ComposedKeys composed = composeKeys({.signalDb = row.signalDb, .seconds = 9});
    for (float& x : composed.recording.samples)
      x = std::clamp(row.gain * x, -1.0f, 1.0f);
    if (!row.hasKeys) composed.recording.keys.clear();
    LiveTakes live(composed.recording.rate);
    play(composed.recording, 0, 9, live);
    EXPECT_EQ(live.state().verdict, row.verdict) << row.gain << " " << row.signalDb;
  }
}

}  // namespace
}  // namespace tobrin
