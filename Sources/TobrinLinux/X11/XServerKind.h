/// Whether a display is an X11 session or serves X11 programs within a Wayland one. Thread: any.
#pragma once

#include <cstdint>
#include <string>

namespace tobrin {

enum class XServerKind : uint8_t { none, own, withinWayland };

/// Asks the server of a display (":0"); `none` where the name is empty or no server answers.
XServerKind xServerKind(const std::string& display);

}  // namespace tobrin
