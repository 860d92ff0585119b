/// "import": makes a pack of one in another program's format.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addImportCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
