// Packs of other programs, composed here with every fault that is seen in theirs.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <set>
#include <span>
#include <sstream>

#include "Input/KeyLayout.h"
#include "Packs/PackLoader.h"
#include "Packs/SampleBuffer.h"
#include "RunWorkshop.h"
#include "Support/ForeignPacks.h"
#include "Support/KeptText.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;
using testing::ArchiveMaker;
using testing::Files;
using testing::Outcome;
using testing::run;
namespace fs = std::filesystem;
namespace foreign = testing::foreign;

Json imported(const fs::path& source, const fs::path& into) {
  const Outcome outcome = run({"import", source, "--into", into, "--json"});
  EXPECT_EQ(outcome.status, 0) << source << ": " << outcome.err;
  return outcome.status == 0 ? Json::parse(outcome.out) : Json();
}

std::shared_ptr<const LoadedPack> loaded(const fs::path& folder) {
  return loadPack(PackInfo::read(folder, false), 48000);
}

/// The manifest and, of each sound, the length and the power.
std::string describe(const fs::path& pack) {
  std::ostringstream text;
  text.precision(3);
  for (const auto& [name, content] : testing::filesIn(pack)) {
    if (!name.ends_with(".wav")) {
      text << content;
      continue;
    }
    const auto sound = SampleBuffer::load(pack / name, 48000);
    double power = 0;
    for (const float x : std::span(sound->left(), sound->frames()))
      power += static_cast<double>(x) * static_cast<double>(x);
    text << name << ": " << sound->frames() << " frames, " << power << "\n";
  }
  return text.str();
}

TEST(ImportCommand, MakesPacksOfEveryFormatFromFoldersAndArchives) {
  const std::pair<const char*, Files> rows[] = {{"Sprite", foreign::sprite()},
                                                {"Files", foreign::files()},
                                                {"Named", foreign::named()},
                                                {"My keys", foreign::keyFiles()},
                                                {"Profile", foreign::profile()}};
  const std::tuple<const char*, int, int> archives[] = {
      {"zip", ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE},
      {"tar.gz", ARCHIVE_FORMAT_TAR_PAX_RESTRICTED, ARCHIVE_FILTER_GZIP},
      {"7z", ARCHIVE_FORMAT_7ZIP, ARCHIVE_FILTER_NONE}};
  std::string text;
  for (const auto& [name, files] : rows) {
    const testing::TempFolder folder;
    const fs::path into = folder.path() / "into";
    testing::writeFiles(folder.path() / "source", files);
    Json made = imported(folder.path() / "source", into);
    EXPECT_EQ(made["name"], name);
    EXPECT_NEAR(made["lufs"].get<double>(), -28, 0.3) << name;
    made.erase("lufs");
    made.erase("path");
    text += made.dump(1) + "\n" + describe(into);
    EXPECT_EQ(run({"check", into}).err, "") << "no name in it is unknown";
    const auto fromFolder = testing::filesIn(into);
    for (const auto& [ending, archive, filter] : archives) {
      const fs::path file = folder.path() / "packed";
      ArchiveMaker(file, archive, filter).add(files);
      imported(file, into);
      EXPECT_EQ(testing::filesIn(into), fromFolder) << name << ", " << ending;
    }
  }
  testing::expectKeptText(text, "TobrinPacks/imported.txt");
}

/// Which of the composed strokes a take is, by its pitch.
int pitchOf(const TBSample& take) {
  constexpr std::size_t begin = 480, end = 1440;  // past the noise of the attack
  int crossings = 0;
  for (std::size_t i = begin; i < std::min<std::size_t>(end, take.frames) - 1; ++i)
    crossings += (take.left[i] < 0) != (take.left[i + 1] < 0) ? 1 : 0;
  const double hertz = crossings / 2.0 * 48000 / (end - begin);
  return static_cast<int>(std::lround((hertz - 500) / 100));
}

/// The strokes that a key plays in turn.
std::set<int> pitches(const LoadedPack& pack, uint16_t code) {
  std::set<int> result;
  const auto* own = pack.pressVariants(code);
  for (const std::size_t variant : own != nullptr ? *own : LoadedPack::Variants())
    result.insert(pitchOf(pack.layers(keyGroupOf(code), variant).samples[1]));
  return result;
}

TEST(ImportCommand, GivesEachKeyItsOwnSound) {
  const std::pair<const char*, Files> packs[] = {{"sprite", foreign::sprite()},
                                                 {"files", foreign::files()},
                                                 {"named", foreign::named()},
                                                 {"key files", foreign::keyFiles()},
                                                 {"profile", foreign::profile()}};
  for (const auto& [name, files] : packs) {
    const testing::TempFolder folder;
    testing::writeFiles(folder.path() / "source", files);
    imported(folder.path() / "source", folder.path() / "into");
    const auto pack = loaded(folder.path() / "into");
    const bool isProfile = std::string(name) == "profile";
    const bool hasOthers = isProfile || std::string(name) == "files";
    const auto expected = [&](int pitch) { return std::set<int>{isProfile ? 1 : pitch}; };
    EXPECT_EQ(pitches(*pack, 0), std::string(name) == "files" ? std::set({0, 7}) : std::set({0}));
    EXPECT_EQ(pitches(*pack, 49), expected(1)) << name << ", Space";
    EXPECT_EQ(pitches(*pack, 36), expected(2)) << name << ", Enter";
    EXPECT_EQ(pitches(*pack, 51), expected(3)) << name << ", Backspace";
    EXPECT_EQ(pitches(*pack, 56), expected(4)) << name << ", Shift";
    EXPECT_EQ(pitches(*pack, 124), std::set{5}) << name << ", right arrow";
    EXPECT_EQ(pitches(*pack, 89), hasOthers ? expected(6) : std::set<int>())
        << name << ", keypad 7";
    if (std::string(name) == "sprite") {
      EXPECT_TRUE(pack->pressVariants(53)->empty()) << "Escape is null";
    }
  }
}

/// A text with one part of it changed.
std::string with(std::string text, const std::string& part, const std::string& other) {
  return text.replace(text.find(part), part.size(), other);
}

TEST(ImportCommand, TakesWhatCarelessPeopleWroteAndSaysWhatItLeftOut) {
  const std::string config = foreign::sprite()["config.json"];
  const std::string sound = foreign::sprite()["sound.wav"];
  const auto row = [&](const std::string& text) {
    return Files{{"config.json", text}, {"sound.wav", sound}};
  };
  const std::tuple<const char*, Files, const char*> rows[] = {
      {"mark and commas", row("\xEF\xBB\xBF" + with(config, "null}}", "null,},}")), "silent"},
      {"comments", row("// mine\n" + with(config, "{\"id\"", "{/* \" */ \"id\"")), "silent"},
      {"old letters", row(with(config, "Sprite", "Caf\xE9")), "silent"},
      {"numbers as texts", row(with(config, "[0, 100]", "[\"0\", \"100\"]")), "silent"},
      {"past the end", row(with(config, "[500, 100]", "[500, 900]")), "past the end"},
      {"beyond the end", row(with(config, "[500, 100]", "[5000, 100], \"106\": [0, 9]")),
       "outside"},
      {"nothing known", row(with(config, "[400, 100]", "{}")), "nothing known"},
      {"keys unknown", row(with(config, "null", "null, \"9999\": [0, 100]")), "not known"},
      {"media keys", row(with(config, "null", "null, \"57390\": [0, 100]")), "for media"},
      {"leads out", row(with(config, "null", "null, \"2\": \"../../etc/passwd\"")), "not there"},
      {"config.txt", {{"config.txt", config}, {"sound.wav", sound}}, "silent"},
      {"other case", {{"a/b/config.json", config}, {"a/b/Sound.WAV", sound}}, "silent"},
      {"other letters",
       {{"config.json", with(config, "sound.wav", "s\xC3\xB6und.wav")}, {"s\x94und.wav", sound}},
       "silent"},
      {"two",
       {{"config.json", "{\"defines\": {\"30\": \"none.wav\"}}"},
        {"b/config.json", config},
        {"b/sound.wav", sound},
        {"c/config.json", config}},
       "second descriptions"},
  };
  for (const auto& [name, files, words] : rows) {
    const testing::TempFolder folder;
    ArchiveMaker(folder.path() / "pack.zip", ARCHIVE_FORMAT_ZIP).add(files);
    const Json made = imported(folder.path() / "pack.zip", folder.path() / "into");
    EXPECT_NE(made["notes"].dump().find(words), std::string::npos) << name << made["notes"].dump();
    EXPECT_GE(made["keys"], 5) << name;
  }
}

TEST(ImportCommand, RefusesWhatIsNoPackOrTooMuchOfOneAndLeavesTheFolderAlone) {
  const testing::TempFolder folder;
  const auto zip = [&](const char* name, const Files& files) {
    ArchiveMaker(folder.path() / name, ARCHIVE_FORMAT_ZIP).add(files);
    return folder.path() / name;
  };
  const std::string config = foreign::sprite()["config.json"];
  const std::string endless = testing::wav16({.rate = 1000}, std::vector<int16_t>(300'000));
  Files many;
  for (int i = 0; i <= 10'000; ++i)
    many[std::to_string(i)] = "";
  const auto whole = testing::contentOf(zip("whole.zip", foreign::sprite()));
  const std::pair<fs::path, const char*> rows[] = {
      {zip("bomb.zip", {{"zeros", std::string(std::size_t{129} << 20, '\0')}}),
       "more than 128 MiB"},
      {zip("many.zip", many), "too many files"},
      {zip("long.zip", {{"config.json", config}, {"sound.wav", endless}}), "longer than"},
      {zip("mouse.zip", {{"config.json", R"({"definitions": {}, "soundpack_type": "Mouse"})"}}),
       "mouse buttons"},
      {zip("none.zip", {{"config.json", config}}), "none of its sounds is there"},
      {zip("ours.zip", {{"pack.json", "{}"}}), "a Tobrin pack already"},
      {zip("empty.zip", {{"a.txt", "defines"}}), "no pack in a format that is known"},
      {zip("broken.zip", {{"config.json", "{\"defines\": {"}}), "config.json is not valid JSON"},
      {folder.write("half.zip", whole.substr(0, whole.size() / 2)), "no archive that can be read"},
      {folder.write("text", "hello"), "no archive that can be read"},
      {folder.path() / "absent", "No such file"},
  };
  const fs::path into = folder.path() / "into";
  fs::create_directory(into);
  for (const auto& [source, words] : rows) {
    const Outcome outcome = run({"import", source, "--into", into});
    EXPECT_EQ(outcome.status, 1) << source;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << source << ": " << outcome.err;
    EXPECT_TRUE(fs::is_empty(into)) << source;
  }
}

TEST(ImportCommand, WritesNothingThatAnArchiveNamesAndFollowsNoLinkOutOfIt) {
  const testing::TempFolder folder;
  folder.write("secret.wav", testing::strokeFile(3));
  ArchiveMaker(folder.path() / "evil.tar", ARCHIVE_FORMAT_TAR_PAX_RESTRICTED)
      .add(foreign::sprite())
      .add("../../escaped", "x")
      .add("/tmp/tobrin-escaped", "x")
      .add("2.wav", "", "../secret.wav");
  const Json made = imported(folder.path() / "evil.tar", folder.path() / "into");
  EXPECT_NE(made["notes"].dump().find("lead out of the archive"), std::string::npos);
  EXPECT_NE(made["notes"].dump().find("links and devices"), std::string::npos);
  EXPECT_FALSE(fs::exists("/tmp/tobrin-escaped"));

  testing::writeFiles(folder.path() / "source", foreign::sprite());
  fs::remove(folder.path() / "source/sound.wav");
  fs::create_symlink("../secret.wav", folder.path() / "source/sound.wav");
  EXPECT_EQ(run({"import", folder.path() / "source", "--into", folder.path() / "other"}).status, 1);
}

/// Frames of the first press take of the letters.
std::size_t pressFrames(const fs::path& pack) {
  return loaded(pack)->layers(KeyGroup::alpha, 0).samples[1].frames;
}

TEST(ImportCommand, SeparatesReleasesFromSecondHalvesOfAPress) {
  const auto files = [](const char* timing) {
    const std::string config = R"({"definitions": {"KeyA": {"timing": )" + std::string(timing) +
                               R"(}}, "name": "Halves", "audio_file": "s.wav"})";
    return Files{{"config.json", config}, {"s.wav", testing::spriteFile(2, 48000)}};
  };
  const std::tuple<const char*, int, bool> rows[] = {
      {"[[0, 45], [45, 90]]", 0, true},      // one sound, taken in two
      {"[[0, 90], [30, 90]]", 0, true},      // a part of the press
      {"[[0, 100], [100, 200]]", 1, false},  // two strokes side by side
      {"[[0, 95], [103, 200]]", 1, false},
  };
  for (const auto& [timing, releases, isWhole] : rows) {
    const testing::TempFolder folder;
    testing::writeFiles(folder.path() / "source", files(timing));
    const Json made = imported(folder.path() / "source", folder.path() / "into");
    EXPECT_EQ(made["releases"], releases) << timing;
    // 80 ms sound after 10 ms of silence; 5 dB of it are below what is kept.
    EXPECT_GT(pressFrames(folder.path() / "into"), 70u * 48) << timing;
  }
}

TEST(InstallCommand, PutsAnExportedPackInPlaceOfTheOldOneAndKeepsThatWhereTheNewOneIsBroken) {
  const testing::TempFolder folder;
  ASSERT_EQ(setenv("XDG_DATA_HOME", folder.path().c_str(), 1), 0);
  const fs::path packs = folder.path() / "Tobrin/Packs";
  testing::writeFiles(folder.path() / "source", foreign::named());
  imported(folder.path() / "source", folder.path() / "made");
  const std::string file = folder.path() / "named.tobrinpack";
  const Outcome exported = run({"export", folder.path() / "made", "--out", file});
  EXPECT_EQ(exported.status, 0) << exported.err;
  EXPECT_EQ(exported.err, "") << "it names a licence";
  ASSERT_EQ(run({"install", file}).status, 0);
  EXPECT_EQ(testing::filesIn(packs / "named"), testing::filesIn(folder.path() / "made"));

  testing::writeFiles(packs / "named", {{"old", ""}});
  ArchiveMaker(folder.path() / "sprite.zip", ARCHIVE_FORMAT_ZIP).add(foreign::sprite());
  ArchiveMaker(folder.path() / "wrapped.zip", ARCHIVE_FORMAT_ZIP)
      .add("a/pack.json", testing::contentOf(packs / "named/pack.json"));
  const Outcome broken =
      run({"install", folder.path() / "sprite.zip", folder.path() / "wrapped.zip"});
  EXPECT_EQ(broken.status, 1);
  EXPECT_NE(broken.err.find("wrapped.zip: Can't read press-1-"), std::string::npos) << broken.err;
  EXPECT_TRUE(fs::exists(packs / "named/old") && !fs::exists(packs / "sprite"));

  const Outcome both = run({"install", file, folder.path() / "sprite.zip"});
  EXPECT_EQ(both.status, 0) << both.err;
  EXPECT_FALSE(fs::exists(packs / "named/old"));
  EXPECT_EQ(std::distance(fs::directory_iterator(packs), {}), 2) << "nothing lies next to them";
  const Outcome unlicensed = run({"export", packs / "sprite", "--out", file});
  EXPECT_NE(unlicensed.err.find("licence"), std::string::npos);
}

}  // namespace
}  // namespace tobrin
