/// tobrin-force replay: what the engine makes of a recording, as CSV or JSON.
#pragma once

#include <iosfwd>
#include <vector>

#include "CommandLine.h"
#include "Engine/ForceReplay.h"

namespace CLI {  // NOLINT(readability-identifier-naming): another library's name
class App;
}

namespace tobrin {

void addReplayCommand(CLI::App& app, const ForceStreams& streams);

void writeStagesCsv(std::ostream& out, const std::vector<ReplayedStage>& stages);
void writeStagesJson(std::ostream& out, const std::vector<ReplayedStage>& stages);

}  // namespace tobrin
