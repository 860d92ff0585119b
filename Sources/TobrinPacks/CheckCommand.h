/// `tobrin-packs check`: loads a pack and says what it holds.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addCheckCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
