#include "Building/PackRecipe.h"

#include <gtest/gtest.h>

#include "Building/RecordingAddress.h"

namespace tobrin {
namespace {

constexpr const char* recipe =
    R"({"id": "mine", "name": "Mine", "kind": "Tactile", "summary": "My own", "sources": [
      {"freesoundID": 7, "user": "ann", "title": "Keys", "license": "CC0",
       "previewURL": "https://example.org/keys"},
      {"freesoundID": 9, "user": "bob", "title": "More", "license": "CC BY",
       "previewURL": "more takes.flac", "start": 1.5, "end": 20},
      {"freesoundID": -1, "user": "me", "title": "Own", "license": "CC0",
       "previewURL": "own.flac"}], "enterSources": [
      {"freesoundID": 7, "user": "ann", "title": "Keys", "license": "CC0",
       "previewURL": "https://example.org/keys"}], "options": {"alphaVariants": 8}})";

TEST(PackRecipe, CreditsEveryRecordingOnceAndSurvivesWriting) {
  const PackRecipe read = PackRecipe::fromJson(recipe);
  EXPECT_EQ(read.credits().size(), 3u);
  EXPECT_EQ(
      read.licenseText(),
      "Recordings: \"Keys\" by ann, https://freesound.org/s/7/ (CC0); \"More\" by bob, "
      "https://freesound.org/s/9/ (CC BY); \"Own\" by me (CC0). Sliced and leveled for Tobrin.")
      << "one's own recording has nobody's page";
  SlicerOptions expected;
  expected.alphaVariants = 8;
  EXPECT_EQ(read.options, expected);
  EXPECT_EQ(PackRecipe::fromJson(read.toJson()), read);
  EXPECT_EQ(slicerOptionsFromJson("{}"), SlicerOptions());
}

TEST(RecordingAddress, LeadsToTheFileThatIsMeant) {
  const std::pair<const char*, const char*> rows[] = {
      {"file:///a%20b%2Fc.ogg", "/a b/c.ogg"},
      {"file://localhost/a.ogg", "/a.ogg"},
      {"file:/a.ogg", "/a.ogg"},
      {"file:a.ogg", "a.ogg"},
      {"100%20.ogg", "100%20.ogg"},
      {"file:/50%", "/50%"},
      {"file:/%4", "/%4"},
      {"file:/%4g%41", "/%4gA"},
      {"https://localhost/a.ogg", nullptr},
      {"", nullptr},
  };
  for (const auto& [address, file] : rows) {
    const auto expected =
        file != nullptr ? std::optional<std::filesystem::path>(file) : std::nullopt;
    EXPECT_EQ(localFile(address), expected) << address;
  }
}

}  // namespace
}  // namespace tobrin
