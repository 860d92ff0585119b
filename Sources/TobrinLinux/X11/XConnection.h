/// Ownership of XCB's objects. Thread: any.
#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace tobrin {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};

/// A reply, an event or an error, which XCB leaves to its receiver.
template <typename T>
using XReply = std::unique_ptr<T, FreeDeleter>;

struct XDisconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XConnection = std::unique_ptr<xcb_connection_t, XDisconnect>;

/// Connects to a display; an empty name means the environment's. Nothing where no server answers.
XConnection connectToX(const std::string& display);

inline const xcb_screen_t& firstScreen(xcb_connection_t* connection) {
  return *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

}  // namespace tobrin
