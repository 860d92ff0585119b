/// `tobrin-packs generate`: writes the starter packs.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addGenerateCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
