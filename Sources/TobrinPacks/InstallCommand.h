/// "install": puts packs among the user's own.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addInstallCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
