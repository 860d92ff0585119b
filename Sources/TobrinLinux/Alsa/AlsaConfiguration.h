/// What the user's ALSA configuration says of a device, without opening it. Thread: any.
#pragma once

#include <string>

namespace tobrin {

/// From now on the configuration is what it is now: the library keeps what it read first, and what
/// the default device is may depend on which servers run.
void readAlsaConfigurationAgain();

/// Whether the device of this name hands its sound to one of this type ("pipewire", "jack").
bool alsaDeviceLeadsTo(const std::string& type, const std::string& name);

}  // namespace tobrin
