#include "Panel/Placing/WindowPlacer.h"

#include <QGuiApplication>

#include "Panel/Placing/KWinPlacer.h"
#include "Panel/Placing/SwayPlacer.h"

namespace tobrin {

std::unique_ptr<WindowPlacer> makeWindowPlacer() {
  if (!QGuiApplication::platformName().startsWith("wayland")) return nullptr;
  if (const QString socket = qEnvironmentVariable("SWAYSOCK"); !socket.isEmpty())
    return std::make_unique<SwayPlacer>(socket);
  // Has no effect where no KWin is on the bus.
  return std::make_unique<KWinPlacer>();
}

}  // namespace tobrin
