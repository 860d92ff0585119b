#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "CheckCommand.h"

namespace tobrin {
namespace {

enum ExitStatus { done = 0, failed = 1, wrongUsage = 2 };

constexpr const char* examples = R"(
Examples:
  tobrin-packs check Packs/mine              what a pack holds, or why it does not load

'tobrin-packs COMMAND --help' says more about each.
)";

/// One line, whatever the text holds: file names and JSON errors may carry line breaks.
std::string oneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return text;
}

void addCommands(CLI::App& app, const CommandStreams& streams) {
  addCheckCommand(app, streams);
}

/// What `--help` and `--version` throw is no error; everything else is wrong usage.
int reportParse(const CLI::App& app, const CLI::ParseError& error, const CommandStreams& streams) {
  if (error.get_exit_code() == 0) {
    app.exit(error, streams.out, streams.err);
    return done;
  }
  streams.err << "tobrin-packs: " << oneLine(error.what()) << " (--help says more)\n";
  return wrongUsage;
}

}  // namespace

int runPackWorkshop(const std::vector<std::string>& arguments, const CommandStreams& streams) {
  CLI::App app("Makes, checks and auditions Tobrin's sound packs.", "tobrin-packs");
  app.set_version_flag("--version", "tobrin-packs " TOBRIN_VERSION);
  app.footer(examples);
  app.require_subcommand(1);
  addCommands(app, streams);
  try {
    // The parser takes arguments from the back.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    if (!streams.out.flush()) throw std::runtime_error("can't write to standard output");
    return done;
  } catch (const CLI::ParseError& error) {
    return reportParse(app, error, streams);
  } catch (const std::exception& error) {
    streams.err << "tobrin-packs: " << oneLine(error.what()) << '\n';
    return failed;
  }
}

}  // namespace tobrin
