/// What is remembered of the devices that sounds are played on. A plain value. Thread: any.
#pragma once

#include <map>
#include <string>

namespace tobrin {

struct OutputMemory {
  std::string chosen;      ///< a device's id; empty: the system's default, whichever that is
  std::string chosenName;  ///< for people, for while that device is away
  /// Volume, linear, by the device's id: of every device that sounds were played on.
  std::map<std::string, float> volumes;

  bool operator==(const OutputMemory&) const = default;
};

}  // namespace tobrin
