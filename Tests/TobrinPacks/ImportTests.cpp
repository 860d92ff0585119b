// Packs of other programs, composed here with every fault that is seen in theirs.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cmath>
#include <csignal>
#include <nlohmann/json.hpp>
#include <span>
#include <sstream>

#include "Packs/PackLoader.h"
#include "Packs/SampleBuffer.h"
#include "RunWorkshop.h"
#include "Support/ForeignPacks.h"
#include "Support/InChild.h"
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

/// Which of the composed strokes a sound is, by its pitch.
long strokeOf(const SampleBuffer& sound) {
  constexpr std::size_t begin = 480, end = 1440;  // past the noise of the attack
  int crossings = 0;
  for (std::size_t i = begin; i < std::min(end, sound.frames()) - 1; ++i)
    crossings += (sound.left()[i] < 0) != (sound.left()[i + 1] < 0) ? 1 : 0;
  return std::lround((crossings / 2.0 * 48000 / (end - begin) - 500) / 100);
}

/// The manifest and, of each sound, the stroke, the length and the power.
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
    text << name << ": stroke " << strokeOf(*sound) << ", " << sound->frames() << " frames, "
         << power << "\n";
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

/// A text with one part of it changed.
std::string with(std::string text, const std::string& part, const std::string& other) {
  const auto at = text.find(part);
  return at == std::string::npos ? text : text.replace(at, part.size(), other);
}

TEST(ImportCommand, TakesWhatCarelessPeopleWroteAndSaysWhatItLeftOut) {
  const std::string config = foreign::sprite()["config.json"];
  const std::string sound = foreign::sprite()["sound.wav"];
  const auto row = [&](const std::string& part, const std::string& other) {
    return Files{{"config.json", with(config, part, other)}, {"sound.wav", sound}};
  };
  const auto changed = [](Files files, const char* name, const char* part, const char* other) {
    files[name] = with(files[name], part, other);
    return files;
  };
  const std::pair<const char*, Files> rows[] = {
      {"mark", row("{\"id\"", "\xEF\xBB\xBF{\"id\"")},
      {"commas", row("null}}", "null,},}")},
      {"comments", row("{\"id\"", "// mine\n{/* \" */ \"id\"")},
      {"old letters", row("Sprite", "Caf\xE9 1902")},
      {"numbers as texts", row("[0, 100]", "[\"0\", \"100\"]")},
      {"past the end", row("[500, 100]", "[500, 900]")},
      {"beyond the end", row("[500, 100]", "[5000, 100], \"106\": [0, 9]")},
      {"nothing known", row("[400, 100]", "{}")},
      {"keys unknown", row("null", "null, \"9999\": [0, 100]")},
      {"media keys", row("null", "null, \"57390\": [0, 100]")},
      {"leads out", row("null", "null, \"2\": \"../../etc/passwd\"")},
      {"config.txt", {{"config.txt", config}, {"sound.wav", sound}}},
      {"other case", {{"a/b/config.json", config}, {"a/b/Sound.WAV", sound}}},
      {"other letters",
       {{"config.json", with(config, "sound.wav", "s\xC3\xB6und.wav")}, {"s\x94und.wav", sound}}},
      {"two",
       {{"config.json", "{\"defines\": {\"30\": \"none.wav\"}}"},
        {"b/config.json", config},
        {"b/sound.wav", sound},
        {"c/config.json", config}}},
      {"broken and whole",
       {{"config.json", "{\"defines\": "}, {"b/config.json", config}, {"b/sound.wav", sound}}},
      {"no number", changed(foreign::files(), "config.json", "a{0-1}", "a{0-1x}")},
      {"no sound", changed(foreign::files(), "57.wav", "RIFF", "RIFX")},
      {"a release alone", changed(foreign::files(), "config.json", "\"30\": \"a{0-1}.wav\",", "")},
      {"sounds for all",
       changed(foreign::files(), "config.json", "\"sound\"", "\"soundup\": \"up.wav\", \"sound\"")},
      {"one key of many", changed(foreign::named(), "config.json", "[[100, 200]]", "[\"x\"]")},
      {"one file for one key",
       changed(foreign::named(), "config.json", "{\"timing\": [[200, 300]]}",
               "{\"audio_file\": \"s.wav\"}")},
      {"a source too many",
       changed(foreign::profile(), "profile.yaml", "[other]", "[other, none]")},
      {"one source", changed(foreign::profile(), "profile.yaml", "keys: [right]", "keys: b")},
  };
  std::string text;
  for (const auto& [name, files] : rows) {
    const testing::TempFolder folder;
    ArchiveMaker(folder.path() / "pack.zip", ARCHIVE_FORMAT_ZIP).add(files);
    const Json made = imported(folder.path() / "pack.zip", folder.path() / "into");
    text += std::string(name) + ": " + made["id"].dump() + ", " + made["keys"].dump() + " keys, " +
            made["groups"].dump() + ", releases " + made["releases"].dump() + "\n";
    for (const auto& note : made["notes"])
      text += "  " + note.dump() + "\n";
  }
  testing::expectKeptText(text, "TobrinPacks/careless.txt");
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
  const fs::path sources[] = {
      zip("bomb.zip", {{"zeros", std::string(std::size_t{129} << 20, '\0')}}),
      zip("many.zip", many),
      zip("long.zip", {{"config.json", config}, {"sound.wav", endless}}),
      zip("silent.zip", {{"config.json", config}, {"sound.wav", testing::wav16({}, {0})}}),
      zip("mouse.zip", {{"config.json", R"({"definitions": {}, "soundpack_type": "Mouse"})"}}),
      zip("pad.zip", {{"profile.yaml", "profile: {device: Mouse}\nsources: []\nkeys: {}"}}),
      zip("none.zip", {{"config.json", config}}),
      zip("ours.zip", {{"pack.json", "{}"}}),
      zip("empty.zip", {{"a.txt", "defines"}}),
      zip("broken.zip", {{"config.json", "{\"defines\": {"}}),
      folder.write("half.zip", whole.substr(0, whole.size() / 2)),
      folder.write("text", "hello"),
      folder.path() / "absent",
  };
  const fs::path into = folder.path() / "into";
  fs::create_directory(into);
  std::string text;
  for (const fs::path& source : sources) {
    const Outcome outcome = run({"import", source, "--into", into});
    EXPECT_EQ(outcome.status, 1) << source;
    text += with(outcome.err, folder.path(), "");
    EXPECT_TRUE(fs::is_empty(into)) << source;
  }
  EXPECT_EQ(testing::inChild([&] {  // the disk is full, or nearly so
              signal(SIGXFSZ, SIG_IGN);
              const rlimit small{.rlim_cur = 4096, .rlim_max = 4096};
              setrlimit(RLIMIT_FSIZE, &small);
              const Outcome outcome = run({"import", folder.path() / "whole.zip", "--into", into});
              return outcome.err.find("File too large") == std::string::npos ? 1 : 0;
            }),
            0);
  testing::expectKeptText(text, "TobrinPacks/refused.txt");
}

TEST(ImportCommand, WritesNothingThatAnArchiveNamesAndFollowsNoLinkOutOfIt) {
  const testing::TempFolder folder;
  folder.write("secret.wav", testing::strokeFile(3));
  ArchiveMaker(folder.path() / "evil.tar", ARCHIVE_FORMAT_TAR_PAX_RESTRICTED)
      .add(foreign::sprite())
      .add("../../escaped", "x")
      .add("/tmp/tobrin-escaped", "x")
      .add("2.wav", "", "../secret.wav");
  folder.write("work/.tobrin-work-1/key.wav", "by an import that was ended");
  ASSERT_EQ(setenv("TMPDIR", (folder.path() / "work").c_str(), 1), 0);
  const Json made = imported(folder.path() / "evil.tar", folder.path() / "into");
  ASSERT_EQ(setenv("TMPDIR", "/nope", 1), 0);
  const Outcome refused = run({"slice", folder.path() / "evil.tar"});
  EXPECT_EQ(refused.err, "tobrin-packs: no temporary folder in /nope: No such file or directory\n");
  unsetenv("TMPDIR");
  EXPECT_EQ(testing::entriesIn(folder.path() / "work"), 0) << "what an ended import left";
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

  const fs::path here = fs::current_path();
  fs::current_path(packs / "named");
  const Outcome underfoot = run({"install", file});
  fs::current_path(here);
  EXPECT_EQ(underfoot.err, "tobrin-packs: " + (packs / "named").string() +
                               " is the folder this command runs in, or above it; "
                               "it was left alone\n");

  const std::string again = folder.path() / "made/named.tobrinpack";
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(run({"export", folder.path() / "made", "--out", again}).status, 0);
    EXPECT_TRUE(testing::contentOf(again) == testing::contentOf(file)) << "it holds itself";
  }

  testing::writeFiles(packs / "named", {{"old", ""}});
  ArchiveMaker(folder.path() / "sprite.zip", ARCHIVE_FORMAT_ZIP).add(foreign::sprite());
  ArchiveMaker(folder.path() / "wrapped.zip", ARCHIVE_FORMAT_ZIP)
      .add("a/pack.json", testing::contentOf(packs / "named/pack.json"))
      .add("a/pack.json", "{}");
  fs::create_directory(folder.path() / "bare");
  fs::copy(packs / "named/pack.json", folder.path() / "bare");
  const Outcome bare = run({"install", folder.path() / "bare/"});
  EXPECT_NE(bare.err.find("bare: Can't read press-1-"), std::string::npos) << bare.err;
  const Outcome broken =
      run({"install", folder.path() / "sprite.zip", folder.path() / "wrapped.zip"});
  EXPECT_EQ(broken.status, 1);
  EXPECT_NE(broken.err.find("wrapped.zip: Can't read press-1-"), std::string::npos) << broken.err;
  EXPECT_TRUE(fs::exists(packs / "named/old") && !fs::exists(packs / "sprite"));

  const Outcome both = run({"install", file, folder.path() / "sprite.zip"});
  EXPECT_EQ(both.status, 0) << both.err;
  EXPECT_FALSE(fs::exists(packs / "named/old"));
  EXPECT_EQ(std::distance(fs::directory_iterator(packs), {}), 2) << "nothing lies next to them";
  fs::copy(packs / "named", packs / "named (copy)");
  testing::writeFiles(packs / "named (copy)", {{"old", ""}});
  ASSERT_EQ(run({"install", file}).status, 0);
  EXPECT_FALSE(fs::exists(packs / "named (copy)/old")) << "of two that is the one that plays";
  const Outcome unlicensed = run({"export", packs / "sprite", "--out", file});
  EXPECT_NE(unlicensed.err.find("licence"), std::string::npos);
}

}  // namespace
}  // namespace tobrin
