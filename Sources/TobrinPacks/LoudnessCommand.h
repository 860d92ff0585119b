/// `tobrin-packs loudness`: measures an audio file, or a pack as it sounds in use.
#pragma once

#include <CLI/CLI.hpp>

#include "Command.h"

namespace tobrin {

void addLoudnessCommand(CLI::App& app, const CommandStreams& streams);

}  // namespace tobrin
