#include "Building/PackRecipe.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

constexpr const char* recipe =
    R"({"id": "mine", "name": "Mine", "kind": "Tactile", "summary": "My own", "sources": [
      {"freesoundID": 7, "user": "ann", "title": "Keys", "license": "CC0",
       "previewURL": "https://example.org/keys"},
      {"freesoundID": 9, "user": "bob", "title": "More", "license": "CC BY",
       "previewURL": "more takes.flac"}], "enterSources": [
      {"freesoundID": 7, "user": "ann", "title": "Keys", "license": "CC0",
       "previewURL": "https://example.org/keys"}], "options": {"alphaVariants": 8}})";

TEST(PackRecipe, CreditsEveryRecordingOnceAndSurvivesWriting) {
  const PackRecipe read = PackRecipe::fromJson(recipe);
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

}  // namespace
}  // namespace tobrin
