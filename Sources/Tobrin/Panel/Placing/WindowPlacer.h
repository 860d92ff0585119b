/// Places windows on Wayland, where a program cannot do so itself and some compositors do it when
/// asked, each in its own way. Thread: main.
#pragma once

#include <memory>

namespace tobrin {

class WindowPlacer {
 public:
  virtual ~WindowPlacer() = default;

  /// This program's next window appears next to the pointer, which has clicked the tray's icon.
  /// Call it before the window is shown; returns at once. Where the compositor refuses, or none of
  /// ours appears within seconds, everything stays as it is.
  virtual void placeNext() = 0;
};

/// The way of the compositor that runs here; null where windows place themselves (X11) or no way is
/// known.
std::unique_ptr<WindowPlacer> makeWindowPlacer();

}  // namespace tobrin
