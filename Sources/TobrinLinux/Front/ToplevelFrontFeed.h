/// The application in front on sway and other Wayland desktops that announce their windows in the
/// same way. Thread: the watcher's.
#pragma once

#include <list>
#include <memory>
#include <string>

#include "Front/FrontFeed.h"

struct wl_array;
struct wl_display;
struct wl_proxy;
struct wl_registry;

namespace tobrin {

class ToplevelFrontFeed final : public FrontFeed {
 public:
  /// Connects to the environment's display.
  ToplevelFrontFeed();
  ~ToplevelFrontFeed() override;
  ToplevelFrontFeed(const ToplevelFrontFeed&) = delete;
  ToplevelFrontFeed& operator=(const ToplevelFrontFeed&) = delete;

  [[nodiscard]] int descriptor() const override;
  bool process(const Report& report) override;

 private:
  /// One window.
  struct Toplevel {
    ToplevelFrontFeed* feed;
    wl_proxy* handle;
    Front current{}, next{};  // `next` is put together until the desktop says that it is whole
    bool isActive = false, willBeActive = false;

    void takeStates(const wl_array& states);
  };
  [[nodiscard]] Front front() const;

  struct Events;  // what the library calls

  wl_display* display_ = nullptr;  // owned, as the proxies are
  wl_proxy* registry_ = nullptr;
  wl_proxy* manager_ = nullptr;  // null where the desktop has none
  std::list<Toplevel> toplevels_;
};

}  // namespace tobrin
