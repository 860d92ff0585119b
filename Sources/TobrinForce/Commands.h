/// The commands of tobrin-force, one source each. Every function adds its command to the parser,
/// which then runs it. Thread: main.
#pragma once

#include <iosfwd>

namespace CLI {  // NOLINT(readability-identifier-naming): another library's name
class App;
}

namespace tobrin {

/// Where a command prints its result and what it says while it runs.
struct ForceStreams {
  std::ostream& out;
  std::ostream& err;
};

/// "record": writes what the machine's sensor sends and when keys go down.
void addRecordCommand(CLI::App& app, const ForceStreams& streams);

/// "replay": what the engine makes of a recording, as CSV or JSON.
void addReplayCommand(CLI::App& app, const ForceStreams& streams);

}  // namespace tobrin
