/// How the keys of this session reach the program, and how a self-test types them. Thread: any.
#pragma once

#include <memory>

#include "Base/Environment.h"
#include "Input/KeySource.h"
#include "Input/KeyTyper.h"

namespace tobrin {

/// The X server in an X11 session, the kernel's devices everywhere else, unless TOBRIN_KEYS=x11 or
/// TOBRIN_KEYS=evdev says otherwise.
std::unique_ptr<KeySource> makeKeySource(const Environment& environment = processEnvironment);

/// The X server's test extension where `makeKeySource` takes keys from the server, else a keyboard
/// that the kernel makes for us.
std::unique_ptr<KeyTyper> makeKeyTyper(const Environment& environment = processEnvironment);

}  // namespace tobrin
