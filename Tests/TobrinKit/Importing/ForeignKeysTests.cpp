#include "Importing/ForeignKeys.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "Support/KeptText.h"

namespace tobrin {
namespace {

TEST(ForeignKeys, EveryNumberAndNameIsTheKeyThatItWas) {
  const std::string file = "TobrinKit/Importing/foreign-keys.txt";
  std::string text;
  // The names to ask for stand in the file itself; the numbers follow.
  std::istringstream lines(testing::contentOf(std::filesystem::path(TOBRIN_TESTS) / file));
  for (std::string line; std::getline(lines, line) && line != "Numbers";) {
    const std::string name = line.substr(0, line.find(": "));
    const auto key = ForeignKeys::named(name);
    text += name + ": " + (key ? std::to_string(*key) : "none") + "\n";
  }
  text += "Numbers\n";
  for (unsigned number = 0; number < 65'600; ++number)
    if (const auto key = ForeignKeys::numbered(number))
      text += std::to_string(number) + ": " + std::to_string(key->kernelKey) +
              (key->isSecondary ? ", not the usual one\n" : "\n");
  testing::expectKeptText(text, file);
}

}  // namespace
}  // namespace tobrin
