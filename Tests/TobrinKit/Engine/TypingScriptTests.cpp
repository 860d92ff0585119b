#include "Engine/TypingScript.h"

#include <gtest/gtest.h>

#include <numeric>

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

}  // namespace
}  // namespace tobrin
