/// Which devices may be keyboards of a seat, by the device manager. Thread: main.
#pragma once

#include <string>
#include <vector>

namespace tobrin {

struct KeyboardNodes {
  std::vector<std::string> nodes;
  bool isComplete = true;  ///< false while the device manager is still busy with a device
};

/// Devices with keys that belong to the seat; whether one is a keyboard shows when it is opened. A
/// device counts once the manager's rules have been through, as only then its seat is known.
KeyboardNodes keyboardNodes(const std::string& seat);

}  // namespace tobrin
