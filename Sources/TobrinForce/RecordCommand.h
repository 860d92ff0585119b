/// tobrin-force record: writes what the machine's sensor sends and when keys go down.
#pragma once

#include "CommandLine.h"

namespace CLI {  // NOLINT(readability-identifier-naming): another library's name
class App;
}

namespace tobrin {

void addRecordCommand(CLI::App& app, const ForceStreams& streams);

}  // namespace tobrin
