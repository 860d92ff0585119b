#include "Panel/DesktopFrames.h"

#include <gtest/gtest.h>
#include <wayland-server-core.h>

#include <cstdlib>
#include <thread>

#include "Support/TempFolder.h"

namespace {

/// A compositor that has nothing but a name to offer.
class Compositor final {
 public:
  explicit Compositor(const char* offer) : offer_{offer, 1, 0, nullptr, 0, nullptr} {
    setenv("WAYLAND_DISPLAY", wl_display_add_socket_auto(display_), 1);
    wl_global_create(display_, &offer_, 1, nullptr, [](wl_client*, void*, uint32_t, uint32_t) {});
    thread_ = std::thread([this] { wl_display_run(display_); });
  }
  ~Compositor() {
    wl_display_terminate(display_);
    thread_.join();
    wl_display_destroy(display_);
  }

 private:
  wl_interface offer_;
  wl_display* display_ = wl_display_create();
  std::thread thread_;
};

TEST(DesktopFrames, AreDrawnWhereTheCompositorOffersTo) {
  const tobrin::testing::TempFolder folder;
  setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
  setenv("WAYLAND_DISPLAY", "nobody", 1);
  EXPECT_FALSE(tobrin::desktopDrawsFrames());
  for (const auto* offer : {"zxdg_decoration_manager_v1", "xdg_wm_base"}) {
    const Compositor compositor(offer);
    EXPECT_EQ(tobrin::desktopDrawsFrames(), offer[0] == 'z') << offer;
  }
}

}  // namespace
