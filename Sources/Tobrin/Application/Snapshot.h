/// Draws the panel into an image file, for documentation: without display, keys or sound.
/// Thread: main.
#pragma once

#include <string>
#include <vector>

namespace tobrin {

/// Takes a path (default "menu.png") and, in any order, the words "dark", "contrast", "more" (the
/// page behind "More…"), "call" (paused for a call) and "pack=ID". Returns the exit status; what
/// went wrong is said on standard output.
int drawSnapshot(const std::vector<std::string>& words);

}  // namespace tobrin
