/// What kind of session this program runs in: that decides how keys are heard and shortcuts are
/// taken. A display variable alone decides nothing, for Wayland sessions have one for old programs.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tobrin {

/// The value of an environment variable; empty where it is not set.
using Environment = std::function<std::string(const char* name)>;

/// This process's own.
std::string processEnvironment(const char* name);

enum class SessionKind : uint8_t { x11, wayland, console };

/// Asks, in this order: XDG_SESSION_TYPE where it names a graphical session, WAYLAND_DISPLAY, the
/// login manager, and the X server of DISPLAY itself, which may be one that serves X11 programs in
/// a Wayland session. Thread: any.
SessionKind sessionKind(const Environment& environment);

}  // namespace tobrin
