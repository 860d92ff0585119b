#include "Engine/TypingScript.h"

#include <gtest/gtest.h>

#include <numeric>

#include "Base/SplitMix64.h"

namespace tobrin {
namespace {

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
  EXPECT_EQ(codes("ABCDEFGHIJKLMNOPQRSTUVWXYZ"), codes("abcdefghijklmnopqrstuvwxyz"));
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
