#include "Engine/OfflineRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>

#include "Base/SplitMix64.h"
#include "Engine/DemonstrationPhrase.h"
#include "Engine/Voicing.h"
#include "PlainVoicing.h"
#include "Support/KeptText.h"
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

RenderedSound render(std::vector<ScriptedKey> script, double tail) {
  EngineSettings settings;
  settings.volume = 1;  // so that the master does not move
  settings.blendTiers = false;
  return renderOffline(*TestPack::simple(2400), std::move(script), settings, tail, rate);
}

TEST(Voicing, PlaysTheTakesThatThePackGivesAKey) {
  TestPack builder;
  for (std::size_t take = 0; take < 4; ++take)
    builder.down(KeyGroup::alpha, Tier::medium, 0.1f, 100 + take)
        .up(KeyGroup::alpha, 0.1f, 200 + take);
  using List = std::vector<uint32_t>;
  const auto pack =
      builder.key(0, {List{2}, List{3}}).key(1, {List{}, List{}}).key(2, {List{1, 3}, {}}).make();
  const EngineSettings settings;
  const Voicing voicing(*pack, settings);
  const auto taken = [](const std::optional<TBCommand>& command) {
    return command ? static_cast<int>(command->layers[0].frames) : 0;
  };
  std::map<uint16_t, std::set<int>> downs, ups;
  for (uint32_t tag = 1; tag < 20; ++tag) {
    for (uint16_t code = 0; code < 4; ++code) {
      downs[code].insert(taken(voicing.press(tag, code, {}, {})));
      ups[code].insert(taken(voicing.release(tag, code, 1, {})));
    }
  }
  using Takes = std::set<int>;
  EXPECT_EQ(downs[0], Takes{102});
  EXPECT_EQ(ups[0], Takes{203});
  EXPECT_EQ(downs[1], Takes{0}) << "silent";
  EXPECT_EQ(ups[1], Takes{0});
  EXPECT_EQ(downs[2], (Takes{101, 103})) << "in turn";
  EXPECT_EQ(downs[3].size(), 1u) << "always the same, as without the map";
  EXPECT_EQ(ups[2].size(), 1u);
}

TEST(DemonstrationPhrase, IsAsItWas) {
  SplitMix64 rng(1);
  std::ostringstream text;
  for (const PhraseKey& key : demonstrationPhrase(rng))
    text << key.code << " " << key.press.count() << " " << key.position << "\n";
  testing::expectKeptText(text.str(), "TobrinKit/Engine/phrase.txt");
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

TEST(OfflineRenderer, PlaysEveryKeyAsItMustSound) {
  std::vector<ScriptedKey> script;
  for (uint16_t code = 0; code < 130; ++code) {
    const float position = 0.03f * static_cast<float>(code) - 0.4f;  // beyond both ends, too
    script.push_back(down(0.1 * code, position, code));
    script.push_back(up(0.1 * code + 0.05, position, code));
  }
  const EngineSettings settings;
  testing::PlainVoicing plain(settings);
  plain.mixer.setMaster(0.7f);
  SplitMix64 rng(42);
  const auto [left, right] =
      renderOffline(*testing::PlainVoicing::pack(), script, settings, 0.05, rate);
  auto key = script.begin();
  for (std::size_t from = 0; from < left.size(); from += 64) {
    const std::size_t to = std::min(from + 64, left.size());
    for (; key != script.end() && key->time * rate < static_cast<double>(to); ++key) {
      SCOPED_TRACE("key " + std::to_string(key->code));
      constexpr std::array<double, 4> centers = {0.4, 1.0, 2.2, 4.0};
      const double tier = std::clamp(std::round(key->position), 0.0f, 3.0f);
      const double relative = centers[static_cast<std::size_t>(tier)];
      const double gain = 1 + 0.06 * rng.signedUnit();
      const double pitch = 1 + 0.004 * rng.signedUnit();
      if (key->action == KeyAction::down)
        plain.press(key->code, static_cast<double>(key->position), relative, gain, pitch);
      else
        plain.release(key->code, relative, gain, pitch);
    }
    const auto part = [&](const std::vector<float>& channel) {
      return std::vector<float>(channel.begin() + static_cast<std::ptrdiff_t>(from),
                                channel.begin() + static_cast<std::ptrdiff_t>(to));
    };
    ASSERT_NO_FATAL_FAILURE(plain.expectSound(part(left), part(right))) << "block at " << from;
  }
}

}  // namespace
}  // namespace tobrin
