/// The choice of how this session's keys are typed for a self-test.
#pragma once

#include <memory>

#include "Desktop/SessionKind.h"
#include "Input/KeyTyper.h"

namespace tobrin {

/// The X server's test extension where the keys are heard from it, else a keyboard of the kernel's.
std::unique_ptr<KeyTyper> makeKeyTyper(const Environment& environment = processEnvironment);

}  // namespace tobrin
