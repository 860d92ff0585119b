/// What a Linux desktop's parts are called. Thread: any.
#pragma once

#include "Input/PlatformWords.h"

namespace tobrin {

extern const PlatformWords linuxWords;

}  // namespace tobrin
