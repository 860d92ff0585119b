#include "X11/XServerKind.h"

#include <algorithm>

#include "X11/XConnection.h"
#include "X11/XDeviceNames.h"

namespace tobrin {
namespace {

/// A server within a Wayland session names all its devices after itself ("xwayland-keyboard:14").
bool hasDevicesOfWayland(xcb_connection_t* connection) {
  const auto names = deviceNames(connection);
  return std::any_of(names.begin(), names.end(),
                     [](const auto& device) { return device.second.starts_with("xwayland"); });
}

}  // namespace

XServerKind xServerKind(const std::string& display) {
  if (display.empty()) return XServerKind::none;
  const XConnection connection = connectToX(display);
  if (!connection) return XServerKind::none;
  return hasDevicesOfWayland(connection.get()) ? XServerKind::withinWayland : XServerKind::own;
}

}  // namespace tobrin
