#include "X11/XDeviceNames.h"

#include <xcb/xinput.h>

#include "X11/XConnection.h"

namespace tobrin {

std::map<uint16_t, std::string> deviceNames(xcb_connection_t* connection) {
  std::map<uint16_t, std::string> names;
  const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
  if (extension == nullptr || extension->present == 0) return names;
  const XReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
      connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
  const XReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
      connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
  if (!version || !devices) return names;
  auto infos = xcb_input_xi_query_device_infos_iterator(devices.get());
  for (; infos.rem > 0; xcb_input_xi_device_info_next(&infos)) {
    const auto length = xcb_input_xi_device_info_name_length(infos.data);
    names[infos.data->deviceid].assign(xcb_input_xi_device_info_name(infos.data),
                                       static_cast<std::size_t>(length));
  }
  return names;
}

}  // namespace tobrin
