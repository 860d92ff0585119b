/// The commands of the pack workshop, one source each. Every function adds its command to the
/// parser, which then runs it. Thread: main.
#pragma once

#include <ostream>

namespace CLI {  // NOLINT(readability-identifier-naming): another library's name
class App;
}

namespace tobrin {

/// A command prints its result on `out`. It fails by throwing: `CLI::ValidationError` for arguments
/// that make no sense, any other `std::exception` for what went wrong; the text becomes the one
/// line on `err`.
struct CommandStreams {
  std::ostream& out;
  std::ostream& err;
};

/// "import": makes a pack of one in another program's format.
void addImportCommand(CLI::App& app, const CommandStreams& streams);

/// "export": writes a pack as one file to share.
void addExportCommand(CLI::App& app, const CommandStreams& streams);

/// "install": puts packs among the user's own.
void addInstallCommand(CLI::App& app, const CommandStreams& streams);

/// "list": the packs that the application would offer.
void addListCommand(CLI::App& app, const CommandStreams& streams);

/// "check": loads a pack and says what it holds.
void addCheckCommand(CLI::App& app, const CommandStreams& streams);

/// "generate": writes the starter packs.
void addGenerateCommand(CLI::App& app, const CommandStreams& streams);

/// "loudness": measures an audio file, or a pack as it sounds in use.
void addLoudnessCommand(CLI::App& app, const CommandStreams& streams);

/// "render": plays typing into a sound file.
void addRenderCommand(CLI::App& app, const CommandStreams& streams);

/// "slice": shows what the slicer makes of a recording.
void addSliceCommand(CLI::App& app, const CommandStreams& streams);

/// "record": makes a pack of one's own keyboard. Needs a desktop's sound server and keys.
void addRecordCommand(CLI::App& app, const CommandStreams& streams);

/// "build": makes a pack from recordings.
void addBuildCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
