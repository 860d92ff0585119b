#include "CommandLine.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Commands.h"
#include "Support/CommandTexts.h"
#include "Support/Session.h"

namespace tobrin {
namespace {

testing::Outcome run(const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  const int status = runForceTools(arguments, {out, err});
  return {status, out.str(), err.str()};
}

TEST(ForceTools, AnswerEverythingAsTheyDid) {
  testing::Session(run).expectAsKept("TobrinForce/session.txt");
}

TEST(ForceTools, HelpIsAsItWas) {
  CLI::App app;
  std::ostringstream nowhere;
  addRecordCommand(app, {nowhere, nowhere});
  addReplayCommand(app, {nowhere, nowhere});
  const std::string help = run({"--help"}).out;
  testing::expectKeptText(testing::textsOf(app) + help.substr(help.find("Examples:")),
                          "TobrinForce/commands.txt");
}

}  // namespace
}  // namespace tobrin
