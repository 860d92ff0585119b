/// "build": makes a pack from recordings.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addBuildCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
