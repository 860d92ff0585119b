/// What the user's ALSA configuration says of a device, without opening it.
#pragma once

#include <string>

namespace tobrin {

/// Whether the device of this name hands its sound to a PipeWire server. Thread: any.
bool alsaDeviceLeadsToPipeWire(const std::string& name);

}  // namespace tobrin
