#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Packs/SampleBuffer.h"
#include "RunWorkshop.h"
#include "ScriptFile.h"
#include "Support/AudioFiles.h"
#include "Support/CommandTexts.h"
#include "Support/Failure.h"
#include "Support/KeptText.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

class PackWorkshop : public ::testing::Test {
 protected:
  PackWorkshop() {
    setenv("TOBRIN_PACKS", (folder_.path() / "bundled").c_str(), 1);
    setenv("XDG_DATA_HOME", (folder_.path() / "data").c_str(), 1);
    folder_.write("bundled/one/pack.json",
                  R"({"formatVersion":1,"id":"one","name":"On\u001be","kind":"k","groups":)"
                  R"({"alpha":{"down":{"soft":["a.wav"],"hard":["a.wav","b.wav"]}}}})");
    for (const char* name : {"bundled/one/a.wav", "bundled/one/b.wav"})
      folder_.write(name, testing::wav16({}, std::vector<int16_t>(480, 8000)));
    folder_.write("bundled/bad/pack.json",
                  R"({"formatVersion":1,"id":"bad","name":"B\u00e4d","kind":"k","groups":)"
                  R"({"alpha":{"down":{"soft":["../x\ny.wav"]}}}})");
  }

  int run(const std::vector<std::string>& arguments) {
    last_ = testing::run(arguments);
    return last_.status;
  }
  [[nodiscard]] std::string path(const std::string& relative) const {
    return (folder_.path() / relative).string();
  }
  [[nodiscard]] nlohmann::json output() const { return nlohmann::json::parse(last_.out); }

  testing::TempFolder folder_;
  testing::Outcome last_;
};

TEST_F(PackWorkshop, WrongUsageAndFailureHaveDifferentStatus) {
  const std::vector<std::vector<std::string>> wrong = {
      {}, {"nonsense"}, {"--nonsense"}, {"check"}, {"check", "a", "b"}, {"list", "--bogus"}};
  for (const auto& arguments : wrong) {
    EXPECT_EQ(run(arguments), 2) << ::testing::PrintToString(arguments);
    EXPECT_TRUE(last_.err.starts_with("tobrin-packs: ")) << last_.err;
    EXPECT_EQ(last_.out, "");
  }
  EXPECT_EQ(run({"check", path("absent")}), 1);
  EXPECT_EQ(last_.err, "tobrin-packs: No pack.json in " + path("absent") + "\n");
  EXPECT_EQ(run({"check", path("bundled/bad"), "--json"}), 1);
  EXPECT_EQ(last_.err, "tobrin-packs: Invalid bad: path escapes pack: ../x y.wav\n") << "one line";
  EXPECT_EQ(last_.out, "");
}

TEST(PackWorkshopTexts, AreAsTheyWere) {
  CLI::App app;
  for (const auto& add :
       {addListCommand, addCheckCommand, addGenerateCommand, addLoudnessCommand, addRenderCommand,
        addSliceCommand, addBuildCommand, addImportCommand, addExportCommand, addInstallCommand})
    add(app, {std::cout, std::cerr});
  const std::string help = testing::run({"--help"}).out;
  testing::expectKeptText(testing::textsOf(app) + help.substr(help.find("Examples:")),
                          "TobrinPacks/commands.txt");
}

TEST_F(PackWorkshop, ListsWhatItFinds) {
  ASSERT_EQ(run({"list", "--json"}), 0);
  const auto list = output();
  ASSERT_EQ(list.size(), 2u) << "a pack with broken takes is listed too";
  EXPECT_EQ(list[1]["name"], "On\033e");
  ASSERT_EQ(run({"list"}), 0);
  EXPECT_EQ(last_.out.find('\x1B'), std::string::npos) << "names do not command the terminal";
  const std::size_t second = last_.out.find('\n') + 1;
  EXPECT_EQ(last_.out.find("bundled"), last_.out.find("bundled", second) - second + 1)
      << "a letter of two bytes takes one column\n"
      << last_.out;
}

TEST_F(PackWorkshop, TakesNamesOfTheLibraryAndGuessesWhatWasMeant) {
  EXPECT_EQ(run({"check", "one"}), 0) << last_.err;
  const auto says = [&](const std::vector<std::string>& arguments, const char* words) {
    EXPECT_NE(run(arguments), 0);
    EXPECT_NE(last_.err.find(words), std::string::npos) << last_.err;
  };
  says({"check", "onne"}, "is called 'onne', did you mean 'one'?");
  says({"check", "something"}, "is called 'something'\n");
  says({"rendr"}, "no command 'rendr', did you mean 'render'?");
  EXPECT_EQ(run({"render", "one", "--text", "é", "--out", path("x.wav")}), 0);
  EXPECT_NE(last_.err.find("the sound is silent"), std::string::npos) << last_.err;
}

TEST_F(PackWorkshop, WarnsOfUnknownNames) {
  const auto warnsOf = [&](const char* name, const std::vector<std::string>& arguments) {
    run(arguments);
    EXPECT_NE(last_.err.find("tobrin-packs: warning: " + path("")), std::string::npos) << last_.err;
    EXPECT_NE(last_.err.find(name), std::string::npos) << last_.err;
  };
  const std::string pack = path("bundled/one"), take = pack + "/a.wav", file = path("slip.json");
  folder_.write("slip.json", R"({"noRelease": true})");
  warnsOf("noReleases", {"slice", take, "--options", file});
  warnsOf("noRelease", {"render", pack, "--text", "a", "--out", path("x.wav"), "--settings", file});
  folder_.write("slip.json",
                R"({"id":"x","name":"","kind":"","summary":"","sources":[],"nmae":0})");
  warnsOf("\"name\"", {"build", file, "--into", path("new")});
  folder_.write("bundled/one/pack.json",
                R"({"formatVersion":1,"id":"one","name":"","kind":"k","groups":)"
                R"({"aplha":{"down":{"soft":["a.wav"]}}}})");
  warnsOf("\"alpha\"", {"check", pack});
}

TEST_F(PackWorkshop, RendersTextsFilesAndScripts) {
  const auto content = [&](const char* name) { return testing::contentOf(path(name)); };
  const auto render = [&](std::vector<std::string> arguments, const char* out) {
    arguments.insert(arguments.begin(), {"render", path("bundled/one"), "--out", path(out)});
    return run(arguments);
  };
  folder_.write("text", "-a b");
  ASSERT_EQ(render({"--text", "-a b"}, "a.wav"), 0) << last_.err;
  ASSERT_EQ(render({"--text-file", path("text"), "--seed", "3", "--wpm", "85"}, "b.wav"), 0);
  EXPECT_EQ(content("a.wav"), content("b.wav"));

  // A key at the start, at full volume for lack of a ramp: the take's own first sample in float.
  folder_.write("keys.json", R"([{"time":0,"code":49,"action":"down","position":0}])");
  folder_.write("loud.json", R"({"volume":1,"blendTiers":false})");
  const std::vector<std::string> exact = {
      "--script", path("keys.json"), "--settings", path("loud.json"), "--format",
      "f32",      "--tail",          "0.01"};
  ASSERT_EQ(render(exact, "f.wav"), 0) << last_.err;
  const auto sound = SampleBuffer::load(path("f.wav"), 48000);
  ASSERT_EQ(sound->frames(), 480u);
  EXPECT_NEAR(sound->left()[0], 8000.0 / 32768, 0.07 * 8000 / 32768);
}

TEST_F(PackWorkshop, RefusesNumbersAndFilesThatMakeNoSense) {
  const std::string out = path("out.wav");
  const std::pair<std::string, std::vector<std::string>> senseless[] = {
      {"--wpm", {"nan", "0", "401"}},
      {"--seed", {"-1", "1e3", "18446744073709551616"}},
      {"--strength", {"3.5"}},
      {"--tail", {"-0.1", "inf"}},
      {"--format", {"mp3"}},
      {"--script", {"x"}},
      {"--settings", {path("absent"), path("bundled")}}};
  for (const auto& [option, values] : senseless) {
    const bool isFile = option == "--settings";
    for (const std::string& value : values) {
      SCOPED_TRACE(option + " " + value);
      EXPECT_EQ(run({"render", path("bundled/one"), "--out", out, "--text", "a", option, value}),
                isFile ? 1 : 2);
      EXPECT_NE(last_.err.find(isFile ? value : option), std::string::npos) << last_.err;
      EXPECT_FALSE(std::filesystem::exists(out));
    }
  }
  EXPECT_EQ(run({"render", path("bundled/one"), "--out", "/dev/null", "--text", "a"}), 1);
  EXPECT_EQ(run({"render", path("bundled/one"), "--out", path("no/x.wav"), "--text", "a"}), 1);
  const std::string endless(10000, 'a');
  EXPECT_EQ(run({"render", path("bundled/one"), "--out", out, "--wpm", "1", "--text", endless}), 1);
  EXPECT_NE(last_.err.find("a WAV file holds"), std::string::npos) << last_.err;
}

TEST(ScriptFile, RefusesEntriesOutOfRangeByNumberAndKey) {
  const std::string good = R"({"time":0.5,"code":4,"action":"up","position":3})";
  ASSERT_EQ(parseScript("[" + good + "]"), std::vector<ScriptedKey>({{0.5, 4, KeyAction::up, 3}}));
  testing::expectRefusals(
      parseScript,
      {
          {"{}", "not a list"},
          {"[", "not valid JSON"},
          {std::string(33, '['), "nested too deeply"},
          {"[1]", "entry 1: is not an object"},
          {R"([{"time":-1}])", "entry 1: \"time\" is not a number from 0 to 86400"},
          {R"([{"time":0,"code":65536}])", "\"code\" is not"},
          {R"([{"time":0,"code":1.5}])", "\"code\" is not an integer"},
          {R"([{"time":0,"code":1,"action":"press"}])", "\"action\" is neither"},
          {R"([{"time":0,"code":1,"action":"up"}])", "\"position\" is missing"},
          {R"([{"time":0,"code":1,"action":"up","position":3.1}])", "\"position\" is not"},
      });
}

}  // namespace
}  // namespace tobrin
