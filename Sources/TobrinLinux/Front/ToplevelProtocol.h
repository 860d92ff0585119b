/// The Wayland protocol by which sway and its relatives tell of all windows
/// (zwlr_foreign_toplevel_management_unstable_v1, version 2), as the Wayland library wants it
/// described. Debian 12 has no package with its description. Thread: any.
#pragma once

#include <wayland-client.h>

namespace tobrin::toplevel {

/// Announces windows. Its events are `ManagerEvents`.
extern const wl_interface manager;
/// One window. Its events are `HandleEvents`.
extern const wl_interface handle;

constexpr uint32_t version = 2;
constexpr uint32_t destroyRequest = 7;  ///< of a handle

/// Of the array that comes with `HandleEvents::state`.
enum State : uint32_t { maximized, minimized, activated, fullScreen };

/// In the protocol's order.
struct ManagerEvents {
  void (*toplevel)(void* self, wl_proxy* manager, wl_proxy* handle);
  void (*finished)(void* self, wl_proxy* manager);
};

/// In the protocol's order. Changes count once `done` comes.
struct HandleEvents {
  void (*title)(void* self, wl_proxy* handle, const char* title);
  void (*appId)(void* self, wl_proxy* handle, const char* id);
  void (*outputEnter)(void* self, wl_proxy* handle, wl_output* output);
  void (*outputLeave)(void* self, wl_proxy* handle, wl_output* output);
  void (*state)(void* self, wl_proxy* handle, wl_array* states);
  void (*done)(void* self, wl_proxy* handle);
  void (*closed)(void* self, wl_proxy* handle);
};

}  // namespace tobrin::toplevel
