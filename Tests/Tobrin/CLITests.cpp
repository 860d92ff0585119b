#include "CommandLine/CLI.h"

#include <gtest/gtest.h>

#include <array>

#include "CommandLine/InstallFiles.h"

namespace tobrin {
namespace {

TEST(CLI, ReadsSeconds) {
  EXPECT_EQ(parseSeconds("0.5", 20), 0.5);
  EXPECT_EQ(parseSeconds("1e1", 20), 10);
  EXPECT_EQ(parseSeconds("1e12", 20), 365.0 * 24 * 3600);
  for (const char* wrong : {"abc", "", "5s", " 5", "inf", "nan", "1e999"})
    EXPECT_EQ(parseSeconds(wrong, 20), 20) << wrong;
  EXPECT_EQ(parseSeconds(std::nullopt, 20), 20);
  EXPECT_EQ(parseSeconds("0", 20), 0);
  EXPECT_EQ(parseSeconds("-3", 20), 0);
}

TEST(CLI, TakesOnlyTheWordsItKnows) {
  ::testing::internal::CaptureStderr();
  for (const char* word : {"--bogus", "--Help", "help", "", "-hh"})
    EXPECT_EQ(runDiagnostic({word}), std::nullopt) << word;
  EXPECT_EQ(runDiagnostic({}), std::nullopt);
  EXPECT_EQ(runDiagnostic({"-session", "1021_2"}), std::nullopt);
  const std::string said = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("no option --bogus (see"), std::string::npos) << said;
  EXPECT_NE(said.find("no file help; starting"), std::string::npos) << said;
  EXPECT_EQ(said.find("session"), std::string::npos) << "a session manager's: " << said;
}

TEST(CLI, NamesTheFileThatCannotBeInstalled) {
  const std::vector<std::string> files = {"Downloads/good.tobrinpack", "Downloads/bad.zip",
                                          "Downloads/folder/"};
  const std::array<const char*, 3> rows[] = {
      {"bad.zip: holds no pack", "bad.zip", "holds no pack"},
      {"bad.zip is no archive", "bad.zip", "it is no archive"},
      {"folder: holds no pack", "folder", "holds no pack"},
      {"no room: nothing left", "good.tobrinpack", "no room: nothing left"},
  };
  for (const auto& [reason, name, shown] : rows) {
    const PackProblem expected{.name = name, .reason = shown};
    const std::string said = "tobrin-packs: warning: x\ntobrin-packs: ";
    EXPECT_EQ(problemIn(said + reason, files), expected) << reason;
  }
}

TEST(CLI, SaysHowItIsUsed) {
  for (const char* word : {"--help", "-h"}) {
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(runDiagnostic({word}), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "Tobrin, velocity-sensitive keyboard sounds.\n"
              "  (no arguments)   run the menu-bar app\n"
              "  --probe [secs]   measure how your keystrokes register on the motion sensor\n"
              "  --selftest       check key capture, audio engine and sensor (muted)\n"
              "  --micwatch [secs] show when apps take and release the microphone (\"Quiet during "
              "calls\")\n");
  }
}

}  // namespace
}  // namespace tobrin
