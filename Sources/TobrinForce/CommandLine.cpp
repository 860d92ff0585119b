#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include "Commands.h"

namespace tobrin {
namespace {

enum ExitStatus { done = 0, failed = 1, wrongUsage = 2 };

constexpr const char* footer = R"(
Examples:
  tobrin-force record trace.csv keys.csv --seconds 30    type meanwhile
  tobrin-force replay trace.csv keys.csv                 what the engine makes of it
  TOBRIN_MOTION_TRACE=trace.csv tobrin                   the application with that sensor

'tobrin-force COMMAND --help' says more about each.
)";

int reportParse(const CLI::App& app, const CLI::ParseError& error, const ForceStreams& streams) {
  if (error.get_exit_code() == 0) {
    app.exit(error, streams.out, streams.err);
    return done;
  }
  streams.err << "tobrin-force: " << error.what() << " (--help says more)\n";
  return wrongUsage;
}

}  // namespace

int runForceTools(const std::vector<std::string>& arguments, const ForceStreams& streams) {
  CLI::App app("Records motion traces and shows what the engine makes of them.", "tobrin-force");
  app.set_version_flag("--version", "tobrin-force " TOBRIN_VERSION);
  app.footer(footer);
  app.require_subcommand(1);
  addReplayCommand(app, streams);
  addRecordCommand(app, streams);
  try {
    // The parser takes arguments from the back.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    if (!streams.out.flush()) throw std::runtime_error("can't write to standard output");
    return done;
  } catch (const CLI::ParseError& error) {
    return reportParse(app, error, streams);
  } catch (const std::exception& error) {
    streams.err << "tobrin-force: " << error.what() << '\n';
    return failed;
  }
}

}  // namespace tobrin
