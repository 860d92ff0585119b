#include "Engine/TypingScript.h"

#include <gtest/gtest.h>

#include <numeric>

#include "Engine/SplitMix64.h"

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
  EXPECT_EQ(codes("HELLO"), codes("hello"));
  EXPECT_EQ(codes("K\xC4\xB0"), codes("ki")) << "a Kelvin sign and a dotted I in lower case";
  EXPECT_EQ(codes(std::string_view("é!\x80\xFF\0{}\r~", 10)), std::vector<uint16_t>());
}

TEST(TypingScript, TypesWithTheSeedsRhythm) {
  const double beat = 60.0 / (60 * 5);
  SplitMix64 rng(9);
  const auto position = [](std::size_t index, std::size_t count) {
    return static_cast<float>(index) / static_cast<float>(count);
  };
  const auto script = typingScript("a b\xC3\xA9", 60, 9, position);
  ASSERT_EQ(script.size(), 6u);
  double time = 0.15;
  for (std::size_t i = 0; i < 3; ++i) {
    const uint16_t code = codes("a b")[i];
    const float strength = static_cast<float>(i) / 3;
    EXPECT_EQ(script[2 * i], (ScriptedKey{time, code, KeyAction::down, strength}));
    const double release = time + 0.06 + 0.04 * rng.unit();
    EXPECT_EQ(script[2 * i + 1], (ScriptedKey{release, code, KeyAction::up, strength}));
    double gap = i == 1 ? 0.3 * beat : 0;
    gap += beat * (0.6 + 0.8 * rng.unit());
    time += gap;
  }
}

}  // namespace
}  // namespace tobrin
