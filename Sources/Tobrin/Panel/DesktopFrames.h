/// Who draws the frames of windows on a Wayland desktop. Thread: main.
#pragma once

namespace tobrin {

/// True where the compositor offers to draw title bar and frame; then a program's own would be a
/// second one. Asks over a connection made for it and waits for the answer, a few milliseconds.
/// False without a compositor.
bool desktopDrawsFrames();

}  // namespace tobrin
