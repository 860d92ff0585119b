#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "Engine/OfflineRenderer.h"
#include "Engine/SplitMix64.h"
#include "Engine/TypingScript.h"
#include "Support/TestPack.h"

namespace tobrin {
namespace {

using testing::TestPack;

constexpr double rate = 48000;
constexpr uint16_t space = 49;  // sits in the middle: both channels alike

ScriptedKey down(double time, float position = 1, uint16_t code = space) {
  return {time, code, KeyAction::down, position};
}
ScriptedKey up(double time, float position = 1, uint16_t code = space) {
  return {time, code, KeyAction::up, position};
}

OfflineRenderer::Sound render(std::vector<ScriptedKey> script, double tail = 0.1,
                              bool releaseSounds = true) {
  EngineSettings settings;
  settings.volume = 1;  // so that the master does not move
  settings.blendTiers = false;
  settings.releaseSounds = releaseSounds;
  return OfflineRenderer::render(*TestPack::simple(2400), std::move(script), settings, tail, rate);
}

TEST(OfflineRenderer, StartsKeysWithTheirBlockAndLastsUntilTheTailAfterTheLast) {
  EXPECT_EQ(render({}, -1).left.size(), 0u);
  EXPECT_EQ(render({down(0.5), up(0.25)}, 0.00101).left.size(), 24048u);
  const std::pair<double, std::size_t> table[] = {
      {0.0001, 0}, {63.5 / rate, 0}, {64 / rate, 64}, {1000 / rate, 960}, {-1, 0}};
  for (const auto& [time, onset] : table) {
    const auto left = render({down(time), up(1)}, 0).left;
    const auto first = std::find_if(left.begin(), left.end(), [](float x) { return x != 0; });
    EXPECT_EQ(first - left.begin(), static_cast<std::ptrdiff_t>(onset)) << time;
  }
  const auto last = render({down(100 / rate)}, 0);
  ASSERT_EQ(last.left.size(), 100u);
  EXPECT_EQ(last.left.back(), 0) << "a key at the end of the render comes too late for it";
}

TEST(OfflineRenderer, PlaysTheLevelsOfTiersAndReleases) {
  // The takes of `simple` have levels 0.1 to 0.4 by tier, the release 0.05.
  const std::tuple<float, float, float> table[] = {
      {-3, 0.1f, 0.4f}, {0.6f, 0.2f, 1.0f}, {2, 0.3f, 2.2f}, {9, 0.4f, 4.0f}};
  for (const auto& [position, level, relative] : table) {
    const auto sound = render({down(0, position), up(0.1, position)});
    EXPECT_NEAR(sound.left[100], level, 0.06f * level) << position;
    EXPECT_EQ(sound.left, sound.right) << position;
    const float release = std::clamp(std::sqrt(relative), 0.5f, 1.3f) * 0.05f * 0.8f;
    EXPECT_NEAR(sound.left[4900], release, 0.06f * release) << position;
  }
}

TEST(OfflineRenderer, DrawsForEveryKeyInTimeOrderWhetherItSoundsOrNot) {
  const auto sound = render({down(0.2), up(0), down(0.05), up(0.1)}, 0.1, false).left;
  const auto all = render({up(0), down(0.05), up(0.1), down(0.2)}).left;
  EXPECT_EQ(sound[1000], 0);
  EXPECT_EQ(sound[2500], all[2500]);
  EXPECT_EQ(sound[9700], all[9700]);
}

std::vector<uint16_t> codes(std::string_view text) {
  std::vector<uint16_t> result;
  for (const ScriptedKey& key : typingScript(text, 85, 3, [](auto, auto) { return 1.0f; }))
    if (key.action == KeyAction::down) result.push_back(key.code);
  return result;
}

TEST(TypingScript, KnowsEveryKeyThatTypesACharacter) {
  std::vector<uint16_t> expected(52);
  std::iota(expected.begin(), expected.end(), uint16_t{0});
  expected.erase(expected.begin() + 10);
  EXPECT_EQ(codes("asdfhgzxcvbqweryt123465=97-80]ou[ip\nlj'k;\\,/nm.\t `\b"), expected);
  EXPECT_EQ(codes("HELLO"), codes("hello"));
  EXPECT_EQ(codes("K\xC4\xB0"), codes("ki")) << "a Kelvin sign and a dotted I in lower case";
  EXPECT_EQ(codes(std::string_view("é!\x80\xFF\0{}\r~", 10)), std::vector<uint16_t>());
}

TEST(TypingScript, PausesAfterASpaceInTheSeedsRhythm) {
  const auto script = typingScript("a b", 60, 9, [](auto, auto) { return 1.0f; });
  SplitMix64 rng(9);
  for (std::size_t key = 0; key < 2; ++key) {
    EXPECT_NEAR(script[2 * key + 1].time - script[2 * key].time, 0.06 + 0.04 * rng.unit(), 1e-9);
    const double beats = (key == 1 ? 0.3 : 0) + 0.6 + 0.8 * rng.unit();
    EXPECT_NEAR(script[2 * key + 2].time - script[2 * key].time, 0.2 * beats, 1e-9);
  }
}

}  // namespace
}  // namespace tobrin
