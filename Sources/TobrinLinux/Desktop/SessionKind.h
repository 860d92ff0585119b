/// What kind of session this program runs in: that decides how keys are read and how shortcuts are
/// taken. A display variable alone decides nothing, because Wayland sessions set one for X11
/// programs. Thread: any.
#pragma once

#include <cstdint>

#include "Base/Environment.h"

namespace tobrin {

enum class SessionKind : uint8_t { x11, wayland, console };

/// Asks, in this order: XDG_SESSION_TYPE where it names a graphical session, WAYLAND_DISPLAY, the
/// login manager, and the X server of DISPLAY itself, which may be one that serves X11 programs in
/// a Wayland session.
SessionKind sessionKind(const Environment& environment);

}  // namespace tobrin
