/// Loads the program's own optional libraries, which are next to the executable in a build tree and
/// in the library folder once installed. A loaded library stays loaded. Thread: main.
#pragma once

#include "Application/UserInterface.h"

namespace tobrin {

/// Each is null (and the reason logged) where its library is missing or does not fit.
[[nodiscard]] const TrayModule* loadTrayModule();
[[nodiscard]] const PanelModule* loadPanelModule();

}  // namespace tobrin
