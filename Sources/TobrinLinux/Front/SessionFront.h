/// How this session tells which application is in front. Thread: any.
#pragma once

#include <memory>

#include "Base/Environment.h"
#include "Engine/FrontWindow.h"

namespace tobrin {

/// The X server in an X11 session, the desktop itself on Wayland.
std::unique_ptr<FrontWindow> makeFrontWindow(const Environment& environment = processEnvironment);

}  // namespace tobrin
