// What somebody types and what the workshop answers, line by line in session.txt. There "$ WORDS"
// runs a command, "> FILE TEXT" writes a file, "+ FROM TO" copies one, "= FILE OTHER" compares two
// and "? FOLDER" lists one. What is indented below is the answer: "!" is said on standard error,
// "=" is the exit status. Cases are added in that file alone (Docs/TESTING.md).
#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <iostream>
#include <set>
#include <sstream>

#include "Commands.h"
#include "RunWorkshop.h"
#include "Support/CommandTexts.h"
#include "Support/ForeignPacks.h"
#include "Support/KeptText.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

class Session : public ::testing::Test {
 protected:
  Session() {
    setenv("TOBRIN_PACKS", "bundled", 1);
    setenv("XDG_DATA_HOME", folder_.path().c_str(), 1);
    fs::current_path(folder_.path());
    folder_.write("click.wav", testing::wav16({}, std::vector<int16_t>(480, 8000)));
    testing::writeFiles(folder_.path() / "foreign", testing::foreign::files());
    for (const uint16_t channels : {uint16_t{1}, uint16_t{2}}) {
      std::vector<float> tone;
      for (std::size_t n = 0; n < 5U * 44'100 * channels; ++n)
        tone.push_back(0.1F * std::sin(0.142F * static_cast<float>(n / channels)));  // 997 Hz
      folder_.write(channels == 1 ? "mono.wav" : "stereo.wav",
                    testing::wavFloat({.channels = channels, .rate = 44'100}, tone));
    }
  }
  ~Session() override { fs::current_path(before_); }

  std::string answer(const std::string& line) {
    std::istringstream words(line.substr(1));
    std::vector<std::string> arguments;
    for (std::string word; words >> std::quoted(word);)
      arguments.push_back(word);
    if (line[0] == '$') return commandsAnswer(arguments);
    if (line[0] == '?') return indented(entriesOf(arguments[0]), "  ");
    if (line[0] == '=')
      return testing::contentOf(arguments[0]) == testing::contentOf(arguments[1]) ? "  same\n"
                                                                                  : "  different\n";
    if (line[0] == '+') fs::copy(arguments[0], arguments[1]);
    if (line[0] == '>') folder_.write(arguments[0], line.substr(line.find(' ', 2) + 1));
    return "";
  }

 private:
  std::string commandsAnswer(const std::vector<std::string>& arguments) {
    const auto [status, out, err] = testing::run(arguments);
    return indented(err, "  ! ") + indented(out, "  ") +
           (status != 0 ? "  = " + std::to_string(status) + "\n" : "");
  }
  static std::string entriesOf(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
      names.insert(entry.path().filename());
    std::string all;
    for (const std::string& name : names)
      all += name + "\n";
    return all;
  }
  [[nodiscard]] std::string indented(const std::string& text, const char* indent) const {
    std::istringstream lines(text);
    std::string all;
    for (std::string line; std::getline(lines, line);) {
      for (std::size_t at = 0; (at = line.find(folder_.path(), at)) != std::string::npos;)
        line.replace(at, folder_.path().string().size(), "~");
      all += indent + line + "\n";
    }
    return all;
  }

  const fs::path before_ = fs::current_path();
  const testing::TempFolder folder_;
};

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

TEST_F(Session, EveryAnswerIsAsItWas) {
  const std::string file = "TobrinPacks/session.txt";
  std::istringstream lines(testing::contentOf(fs::path(TOBRIN_TESTS) / file));
  std::string all;
  ::testing::internal::CaptureStderr();
  for (std::string line; std::getline(lines, line);)
    if (!line.starts_with("  ")) all += line + "\n" + answer(line + " ");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "nothing but what is shown";
  testing::expectKeptText(all, file);
}

}  // namespace
}  // namespace tobrin
