/// "slice": shows what the slicer makes of a recording.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addSliceCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
