#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "Base/PrintableText.h"
#include "Commands.h"
#include "PackArgument.h"

namespace tobrin {
namespace {

enum ExitStatus { done = 0, failed = 1, wrongUsage = 2 };

constexpr const char* footer = R"(
Examples:
  tobrin-packs list                    what the application would offer
  tobrin-packs check Packs/mine        what a pack holds, or why it does not load
  tobrin-packs generate --into Packs   the starter packs
  tobrin-packs render Packs/mine --text "hello" --out hello.wav
  tobrin-packs slice typing.flac --plot typing.svg
  tobrin-packs build mine.json --into ~/.local/share/Tobrin/Packs/mine
  tobrin-packs install Downloads/pack.zip

'tobrin-packs COMMAND --help' says more about each.
)";

void addCommands(CLI::App& app, const CommandStreams& streams, std::span<const AddCommand> more) {
  addListCommand(app, streams);
  addCheckCommand(app, streams);
  addGenerateCommand(app, streams);
  addLoudnessCommand(app, streams);
  addRenderCommand(app, streams);
  addSliceCommand(app, streams);
  addBuildCommand(app, streams);
  addImportCommand(app, streams);
  addExportCommand(app, streams);
  addInstallCommand(app, streams);
  for (const AddCommand add : more)
    add(app, streams);
}

/// What `--help` and `--version` throw is no error; everything else is wrong usage.
int reportParse(const CLI::App& app, const CLI::ParseError& error, const CommandStreams& streams) {
  if (error.get_exit_code() == 0) {
    app.exit(error, streams.out, streams.err);
    return done;
  }
  streams.err << "tobrin-packs: " << printable(error.what()) << " (--help says more)\n";
  return wrongUsage;
}

/// The parser itself would only ask for a command.
void refuseUnknownCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments.front().starts_with('-')) return;
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_name() == arguments.front()) return;
    names.push_back(command->get_name());
  }
  throw CLI::ValidationError("no command '" + arguments.front() + "'" +
                             didYouMean(arguments.front(), names));
}

/// The arguments from the back, as the parser takes them. It would take a file in brackets for a
/// list of several, so that the brackets get lost.
std::vector<std::string> forParser(std::vector<std::string> arguments) {
  if (!arguments.empty() && arguments.front() == "install") {
    for (std::string& word : arguments)
      if (word.starts_with('[') && word.ends_with(']')) word.insert(0, "./");
  }
  std::ranges::reverse(arguments);
  return arguments;
}

/// The error's text without the prefix that the standard library puts before some.
std::string reasonOf(const std::exception& error) {
  const std::string text = error.what();
  const std::string_view prefix = "filesystem error: ";
  return printable(text.starts_with(prefix) ? text.substr(prefix.size()) : text);
}

}  // namespace

int runPackWorkshop(const std::vector<std::string>& arguments, const CommandStreams& streams,
                    std::span<const AddCommand> more) {
  CLI::App app("Makes, checks and auditions Tobrin's sound packs.", "tobrin-packs");
  app.set_version_flag("--version", "tobrin-packs " TOBRIN_VERSION);
  app.footer(footer);
  app.require_subcommand(1);
  addCommands(app, streams, more);
  try {
    refuseUnknownCommand(app, arguments);
    app.parse(forParser(arguments));
    if (!streams.out.flush()) throw std::runtime_error("can't write to standard output");
    return done;
  } catch (const CLI::ParseError& error) {
    return reportParse(app, error, streams);
  } catch (const std::exception& error) {
    streams.err << "tobrin-packs: " << reasonOf(error) << '\n';
    return failed;
  }
}

}  // namespace tobrin
