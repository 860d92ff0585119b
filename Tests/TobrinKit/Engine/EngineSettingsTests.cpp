#include "Engine/EngineSettings.h"

#include <gtest/gtest.h>

#include <string>

namespace tobrin {
namespace {

TEST(EngineSettings, SurviveTheFileAndMissingFieldsTakeTheirDefaults) {
  EXPECT_EQ(EngineSettings().toJson(),
            R"({"enabled":true,"volume":0.7,"forceSensing":true,"sensitivity":1.0,"fixedTier":1,)"
            R"("blendTiers":true,"releaseSounds":true,"spatial":0.5,"quietDuringCalls":true,)"
            R"("shortcutEnabled":true,"shortcut":{"keyCode":40,"modifiers":11}})");
  EngineSettings quiet;
  quiet.volume = 0.2f;
  EXPECT_EQ(EngineSettings::fromJson(R"({"volume": 0.2, "tray": [1, {}], "spatial": null})"),
            quiet);
  EXPECT_EQ(EngineSettings::fromJson(R"({"fixedTier": 0})").fixedTier, Tier::soft);
  const std::string changed =
      R"({"enabled":false,"volume":0.1,"forceSensing":false,"sensitivity":1.7,"fixedTier":3,)"
      R"("blendTiers":false,"releaseSounds":false,"spatial":0.3,"quietDuringCalls":false,)"
      R"("shortcutEnabled":false,"shortcut":{"keyCode":4294967295,"modifiers":7}})";
  EXPECT_EQ(EngineSettings::fromJson(changed).toJson(), changed);
}

}  // namespace
}  // namespace tobrin
