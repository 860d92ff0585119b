#include "X11/XServerKind.h"

#include <xcb/xinput.h>

#include <string_view>

#include "X11/XConnection.h"

namespace tobrin {
namespace {

/// A server within a Wayland session names all its devices after itself ("xwayland-keyboard:14").
bool hasDevicesOfWayland(xcb_connection_t* connection) {
  const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
  if (extension == nullptr || extension->present == 0) return false;
  const XReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
      connection, xcb_input_xi_query_version(connection, 2, 0), nullptr));
  const XReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
      connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
  if (!version || !devices) return false;
  auto infos = xcb_input_xi_query_device_infos_iterator(devices.get());
  for (; infos.rem > 0; xcb_input_xi_device_info_next(&infos)) {
    const std::string_view name(
        xcb_input_xi_device_info_name(infos.data),
        static_cast<std::size_t>(xcb_input_xi_device_info_name_length(infos.data)));
    if (name.substr(0, 8) == "xwayland") return true;
  }
  return false;
}

}  // namespace

XServerKind xServerKind(const std::string& display) {
  if (display.empty()) return XServerKind::none;
  const XConnection connection = connectToX(display);
  if (!connection) return XServerKind::none;
  return hasDevicesOfWayland(connection.get()) ? XServerKind::withinWayland : XServerKind::own;
}

}  // namespace tobrin
