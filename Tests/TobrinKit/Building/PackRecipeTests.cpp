#include "Building/PackRecipe.h"

#include <gtest/gtest.h>

#include "Building/UnknownNames.h"
#include "Support/Failure.h"

namespace tobrin {
namespace {

std::string recipe(const std::string& more = "") {
  const std::string source = R"({"freesoundID": 7, "user": "ann", "title": "Keys",
      "license": "CC0", "previewURL": "https://example.org/keys"})";
  return R"({"id": "mine", "name": "Mine", "kind": "Tactile", "summary": "My own", "sources": [)" +
         source + R"(, {"freesoundID": 9, "user": "bob", "title": "More", "license": "CC BY",
      "previewURL": "more takes.flac"}], "enterSources": [)" +
         source + "]" + more + "}";
}

TEST(PackRecipe, CreditsEveryRecordingOnceAndSurvivesWriting) {
  const PackRecipe read = PackRecipe::fromJson(recipe(R"(, "options": {"alphaVariants": 8})"));
  EXPECT_EQ(read.credits().size(), 2u);
  const std::string text = read.licenseText();
  EXPECT_TRUE(text.starts_with("Recordings: \"Keys\" by ann, "));
  EXPECT_TRUE(
      text.ends_with("/s/7/ (CC0); \"More\" by bob (CC BY). Sliced and leveled for Tobrin."))
      << "a file of one's own has nobody's page: " << text;
  SlicerOptions expected;
  expected.alphaVariants = 8;
  EXPECT_EQ(read.options, expected);
  EXPECT_EQ(PackRecipe::fromJson(read.toJson()), read);
  EXPECT_EQ(slicerOptionsFromJson("{}"), SlicerOptions());
}

TEST(PackRecipe, RefusesWhatIsWrongByItsKey) {
  testing::expectRefusals(
      PackRecipe::fromJson,
      {
          {"[]", "object"},
          {"{\"id\": 3}", "\"id\" must be a text"},
          {"{}", "\"id\" is missing"},
          {"{\"id\": \"\"}", "\"id\" must not be empty"},
          {recipe(R"(, "options": {"gainDb": "loud"})"), "\"gainDb\" must be a number"},
          {recipe(R"(, "options": {"alphaVariants": 2.5})"), "\"alphaVariants\" must be a whole"},
          {recipe(R"(, "options": {"bigKeyShare": 1e300})"), "\"bigKeyShare\" must lie between"},
          {recipe(R"(, "options": {"preRollMs": 1001})"), "\"preRollMs\" must lie between"},
          {recipe(R"(, "options": {"noReleases": 1})"), "\"noReleases\" must be true or false"},
          {recipe().substr(0, 40), "not valid JSON from line 1, column 41 on"},
          {recipe(R"(, "options": {"x": )" + std::string(100'000, '[') + std::string(100'000, ']') +
                  "}"),
           "nested too deeply"},
      });
}

TEST(UnknownNames, SayWhatMayHaveBeenMeant) {
  const std::string manifest =
      R"({"id": "", "groups": {"aplha": {}, "space": {"down": {"slma": [], "Soft": []}, "Up": []}}})";
  const std::string slips = recipe(R"(, "options": {"alphaVariant": 8, "noReleases": true})");
  using Lines = std::vector<std::string>;
  EXPECT_EQ(unknownNames(recipe(), exampleRecipe()), Lines());
  EXPECT_EQ(unknownNames(slips, exampleRecipe()),
            (Lines{"\"options.alphaVariant\" is not known and has no effect; is it "
                   "\"alphaVariants\"?"}));
  EXPECT_EQ(unknownNames(manifest, exampleManifest()),
            (Lines{"\"groups.aplha\" is not known and has no effect; is it \"alpha\"?",
                   "\"groups.space.Up\" is not known and has no effect; is it \"up\"?",
                   "\"groups.space.down.slma\" is not known and has no effect; is it \"slam\"?"}));
  EXPECT_EQ(unknownNames(R"([{"comment": 1}, {"tiem": 2}])", R"([{"time": 0}])"),
            (Lines{"\"[0].comment\" is not known and has no effect",
                   "\"[1].tiem\" is not known and has no effect; is it \"time\"?"}));
}

}  // namespace
}  // namespace tobrin
