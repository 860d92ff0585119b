/// `tobrin-packs render`: plays typing into a sound file.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addRenderCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
