/// `tobrin-packs list`: the packs that the application would offer.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addListCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
