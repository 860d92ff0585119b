/// What an X server's input devices call themselves. Thread: any.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <string>

namespace tobrin {

/// By the server's ids. None where the server has no XInput 2.
std::map<uint16_t, std::string> deviceNames(xcb_connection_t* connection);

}  // namespace tobrin
