#include "CommandLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "Commands.h"
#include "Support/CommandTexts.h"
#include "Support/KeptText.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

class ForceToolsTest : public ::testing::Test {
 protected:
  int run(const std::vector<std::string>& arguments) {
    out.str("");
    err.str("");
    return runForceTools(arguments, {out, err});
  }
  testing::TempFolder folder;
  std::string trace =
      folder.write("t.csv", "time_ns,x,y,z\n0,0,0,1\n1000000,0,0,1.5\n2000000,0,0,1\n");
  std::string keys = folder.write("k.csv", "time_ns,code\n1000000,49\n");
  std::ostringstream out, err;
};

TEST_F(ForceToolsTest, ReplayPrintsALineAStage) {
  ASSERT_EQ(run({"replay", trace, keys}), 0) << err.str();
  EXPECT_NE(out.str().find("\n0,49,1000000,provisional,2,0.475,1000000,0.001996,1,"),
            std::string::npos)
      << out.str();
  ASSERT_EQ(run({"replay", trace, keys, "--json", "--sensitivity", "0"}), 0);
  EXPECT_NE(out.str().find("\"stage\": \"provisional\""), std::string::npos);
}

TEST_F(ForceToolsTest, FailuresAreOneLineAndTheirStatusShowsTheirKind) {
  const std::string bad = folder.write("bad.csv", "time_ns,x,y,z\n1,2,3\n");
  struct {
    std::vector<std::string> arguments;
    int status;
    std::string error;
  } const rows[] = {
      {{"replay", bad, keys}, 1, "tobrin-force: " + bad + ":2: expected 4 fields"},
      {{"replay", trace, "/no/such"}, 1, "tobrin-force: /no/such: No such file"},
      {{"replay", trace}, 2, "tobrin-force: KEYS is required"},
      {{"replay", trace, keys, "--sensitivity", "loud"}, 2, "tobrin-force: "},
      {{}, 2, "tobrin-force: A subcommand is required"},
      {{"rewind"}, 2, "tobrin-force: "},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(run(row.arguments), row.status) << row.error;
    EXPECT_EQ(err.str().find(row.error), 0u) << err.str();
    const std::string text = err.str();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_EQ(out.str(), "");
  }
}

TEST_F(ForceToolsTest, ItsTextsAreAsTheyWere) {
  CLI::App app;
  addRecordCommand(app, {out, err});
  addReplayCommand(app, {out, err});
  ASSERT_EQ(run({"--help"}), 0);
  testing::expectKeptText(testing::textsOf(app) + out.str().substr(out.str().find("Examples:")),
                          "TobrinForce/commands.txt");
}

}  // namespace
}  // namespace tobrin
