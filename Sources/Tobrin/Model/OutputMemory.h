/// What is remembered of the devices that sounds are played on. A plain value. Thread: any.
#pragma once

#include <map>
#include <string>

namespace tobrin {

/// How loud it is on one device.
struct Loudness {
  float volume = 1;  ///< linear
  float boost = 1;   ///< 1 to 2; how much louder keys may be than their pack has them

  bool operator==(const Loudness&) const = default;
};

struct OutputMemory {
  std::string chosen{};      ///< a device's id; empty: the system's default
  std::string chosenName{};  ///< for people, for while that device is away
  /// By the device's id: of every device that sounds were played on.
  std::map<std::string, Loudness> loudness{};

  bool operator==(const OutputMemory&) const = default;
};

}  // namespace tobrin
