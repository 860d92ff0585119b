#include "Engine/EngineSettings.h"

#include <gtest/gtest.h>

#include <string>

#include "Support/Failure.h"

namespace tobrin {
namespace {

TEST(EngineSettings, SurviveTheFileAndMissingFieldsTakeTheirDefaults) {
  EngineSettings quiet;
  quiet.volume = 0.2f;
  EXPECT_EQ(EngineSettings::fromJson(R"({"volume": 0.2, "tray": [1, {}], "spatial": null})"),
            quiet);
  const std::string changed =
      R"({"enabled":false,"volume":0.1,"forceSensing":false,"sensitivity":1.7,"fixedTier":3,)"
      R"("blendTiers":false,"releaseSounds":false,"spatial":0.3,"quietDuringCalls":false,)"
      R"("shortcutEnabled":false,"shortcut":{"keyCode":4294967295,"modifiers":7}})";
  EXPECT_EQ(EngineSettings::fromJson(changed).toJson(), changed);
}

TEST(EngineSettings, BrokenFilesAreRefusedNamingWhatIsWrong) {
  const struct {
    const char* label;
    std::string text;
    const char* named;
  } rows[] = {
      {"no text", "", "not valid JSON"},
      {"a list", "[]", "not a JSON object"},
      {"beyond a double", R"({"volume": 1e999})", "not valid JSON"},
      {"beyond a float", R"({"volume": -1e39})", "volume"},
      {"a text for a number", R"({"spatial": "0.5"})", "spatial"},
      {"a number for a switch", R"({"enabled": 1})", "enabled"},
      {"no such tier", R"({"fixedTier": 7})", "fixedTier"},
      {"a huge tier", R"({"fixedTier": 18446744073709551615})", "fixedTier"},
      {"a shortcut without key", R"({"shortcut": {"modifiers": 11}})", "shortcut.keyCode"},
      {"a key code beyond 32 bits", R"({"shortcut": {"keyCode": 4294967296, "modifiers": 0}})",
       "shortcut.keyCode"},
      {"deep nesting", R"({"x":)" + std::string(100'000, '['), "nested too deeply"},
  };
  for (const auto& row : rows) {
    const std::string failure = testing::failureOf([&] { EngineSettings::fromJson(row.text); });
    EXPECT_NE(failure.find(row.named), std::string::npos) << row.label << ": " << failure;
  }
}

}  // namespace
}  // namespace tobrin
