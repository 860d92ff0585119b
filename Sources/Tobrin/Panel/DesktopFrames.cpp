#include "Panel/DesktopFrames.h"

#include <wayland-client.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace tobrin {
namespace {

void noteGlobal(void* drawsFrames, wl_registry* /*registry*/, std::uint32_t /*name*/,
                const char* interface, std::uint32_t /*version*/) {
  if (std::string_view(interface) == "zxdg_decoration_manager_v1")
    *static_cast<bool*>(drawsFrames) = true;
}

void ignoreRemoval(void* /*drawsFrames*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

}  // namespace

bool desktopDrawsFrames() {
  const std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> display(
      wl_display_connect(nullptr), wl_display_disconnect);
  if (display == nullptr) return false;
  const std::unique_ptr<wl_registry, decltype(&wl_registry_destroy)> registry(
      wl_display_get_registry(display.get()), wl_registry_destroy);
  bool drawsFrames = false;
  const wl_registry_listener listener{.global = noteGlobal, .global_remove = ignoreRemoval};
  wl_registry_add_listener(registry.get(), &listener, &drawsFrames);
  wl_display_roundtrip(display.get());
  return drawsFrames;
}

}  // namespace tobrin
