/// The choice of how this session's keys are heard.
#pragma once

#include <memory>

#include "Desktop/SessionKind.h"
#include "Input/KeySource.h"

namespace tobrin {

/// The X server in an X11 session, the kernel's devices everywhere else. TOBRIN_KEYS=x11 or
/// TOBRIN_KEYS=evdev decides otherwise. Thread: any.
std::unique_ptr<KeySource> makeKeySource(const Environment& environment = processEnvironment);

}  // namespace tobrin
