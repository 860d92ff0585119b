/// The application in front of an X11 session, by what its window manager writes at the root window
/// and the applications at their own windows. Thread: the watcher's.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Front/FrontFeed.h"
#include "X11/XConnection.h"

namespace tobrin {

class XFrontFeed final : public FrontFeed {
 public:
  explicit XFrontFeed(const std::string& display);

  [[nodiscard]] int descriptor() const override;
  bool process(const Report& report) override;

 private:
  enum Atom : std::size_t { activeWindow, supported, managerCheck, state, fullScreen, atomCount };

  void findAtoms();
  void watch(xcb_window_t window, uint32_t events) const;
  [[nodiscard]] std::vector<uint8_t> property(xcb_window_t window, xcb_atom_t name) const;
  [[nodiscard]] std::vector<uint32_t> numbers(xcb_window_t window, xcb_atom_t name) const;
  [[nodiscard]] uint32_t number(xcb_window_t window, xcb_atom_t name) const;
  [[nodiscard]] bool managerTells() const;
  [[nodiscard]] bool isAboutFront(const xcb_generic_event_t& event) const;
  [[nodiscard]] std::string applicationOf(xcb_window_t window) const;
  void look();

  XConnection connection_;
  xcb_window_t root_ = XCB_NONE;
  std::array<xcb_atom_t, atomCount> atoms_{};
  xcb_window_t window_ = XCB_NONE;  // the one in front
  bool isStale_ = true;             // `front_` may be out of date
  Front front_;
};

}  // namespace tobrin
