/// The devices that sounds can be played on, as a sound system lists them. Plain values. Thread:
/// any.
#pragma once

#include <string>
#include <vector>

namespace tobrin {

struct SoundOutput {
  std::string id;    ///< the same each time that the device is plugged in
  std::string name;  ///< for people, as the desktop shows it; two devices may share one

  bool operator==(const SoundOutput&) const = default;
};

struct SoundOutputs {
  std::vector<SoundOutput> present;
  std::string used;  ///< id of the one that plays or is about to; empty: not known

  bool operator==(const SoundOutputs&) const = default;
};

}  // namespace tobrin
