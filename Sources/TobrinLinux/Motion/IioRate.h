/// Chooses the sampling rate of an IIO device. More than 1000 samples a second show no more of a
/// keystroke and only cost wake-ups, so the choice is the highest rate up to there, or the next one
/// above it where the device has that. Thread: any.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Motion/IioDevice.h"
#include "Motion/Sysfs.h"

namespace tobrin {

/// The rates to try in turn, as texts to write. `available` is the kernel's list ("50 100 400"),
/// its range ("[1 1 4000]"), or empty.
[[nodiscard]] std::vector<std::string> ratesToTry(std::string_view available);

/// Writes the first rate that the device takes and keeps (the value read back is above 0). Nothing,
/// with the device as it was, where it takes none. The result is in Hz.
std::optional<double> chooseRate(const IioDevice& device, AttributeChanges& changes);

}  // namespace tobrin
