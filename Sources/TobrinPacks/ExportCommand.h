/// "export": writes a pack as one file to hand on.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addExportCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
