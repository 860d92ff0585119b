#include "Engine/EngineSettings.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace tobrin {
namespace {

TEST(EngineSettings, SurviveTheFileAndMissingFieldsTakeTheirDefaults) {
  EngineSettings quiet;
  quiet.volume = 0.2f;
  EXPECT_EQ(EngineSettings::fromJson(R"({"volume": 0.2, "tray": [1, {}], "spatial": null})"),
            quiet);
  const EngineSettings changed{false,
                               0.1f,
                               false,
                               1.7f,
                               Tier::slam,
                               false,
                               false,
                               1.0f / 3,
                               false,
                               false,
                               {UINT32_MAX, {UINT32_MAX}}};
  EXPECT_EQ(EngineSettings::fromJson(changed.toJson()), changed);
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
    try {
      EngineSettings::fromJson(row.text);
      ADD_FAILURE() << row.label << " was accepted";
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(row.named), std::string::npos)
          << row.label << ": " << error.what();
    }
  }
}

}  // namespace
}  // namespace tobrin
