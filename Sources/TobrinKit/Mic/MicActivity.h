/// Who uses a microphone, and who records what is played, as far as the sound system tells. A plain
/// value. Thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tobrin {

struct MicActivity {
  std::optional<std::string> inputDeviceName;  ///< of the default input device
  bool inputRunningSomewhere = false;          ///< some process runs that device
  bool inputDeviceHasOutput = false;           ///< it plays too, as a headset does
  /// Processes that record, this one excluded; 0 for those that do not say who they are; absent
  /// where the system cannot tell.
  std::optional<std::vector<int32_t>> recordingProcesses;
  /// Some process, this one excluded, records what an output plays.
  bool outputRecorded = false;

  bool operator==(const MicActivity&) const = default;

  /// A device that also plays is not trusted on running alone: playback runs it too.
  [[nodiscard]] bool micInUse() const {
    const bool someoneRecords = recordingProcesses && !recordingProcesses->empty();
    return (inputRunningSomewhere && !inputDeviceHasOutput) || someoneRecords;
  }
};

}  // namespace tobrin
