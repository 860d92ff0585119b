#include "Pulse/PulseListing.h"

#include <set>

namespace tobrin {

MicActivity PulseListing::activity(int32_t ownProcess) const {
  MicActivity found;
  for (const auto& [index, source] : sources) {
    if (source.name == defaultSource && !source.isMonitor)
      found.inputDeviceName = source.description.empty() ? source.name : source.description;
  }
  std::set<int32_t> recording;
  for (const Recorder& each : recorders) {
    const auto source = sources.find(each.source);
    if (source == sources.end()) continue;
    if (each.isCorked || each.isLevelMeter || each.isModule || each.process == ownProcess) continue;
    if (source->second.isMonitor) {
      found.outputRecorded = true;
      continue;
    }
    recording.insert(each.process);
    if (source->second.name == defaultSource) found.inputRunningSomewhere = true;
  }
  found.recordingProcesses.emplace(recording.begin(), recording.end());
  return found;
}

}  // namespace tobrin
