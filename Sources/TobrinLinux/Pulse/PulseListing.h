/// Which programs record from a microphone, by what a PulseAudio server lists. A plain value.
/// Thread: any.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Mic/MicActivity.h"

namespace tobrin {

struct PulseListing {
  struct Source {
    std::string name;
    std::string description;
    bool isMonitor = false;  // records what a device plays
  };
  struct Recorder {
    uint32_t source = 0;
    int32_t process = 0;  // 0: not known
    bool isCorked = false;
    bool isLevelMeter = false;
    bool isModule = false;  // the server's own, as a filter between two devices
  };

  std::map<uint32_t, Source> sources;  // by the server's index
  std::vector<Recorder> recorders;
  std::string defaultSource;  // its name; empty: none

  /// Counts programs, `ownProcess` excepted, that record from a microphone or from a monitor. Level
  /// meters do not, and neither do paused streams.
  [[nodiscard]] MicActivity activity(int32_t ownProcess) const;
};

}  // namespace tobrin
