#include "Panel/Placing/WindowPlacer.h"

#include <QGuiApplication>

#include "Desktop/KWinScripts.h"
#include "Panel/Placing/KWinPlacer.h"
#include "Panel/Placing/SwayPlacer.h"

namespace tobrin {

std::unique_ptr<WindowPlacer> makeWindowPlacer() {
  if (!QGuiApplication::platformName().startsWith("wayland")) return nullptr;
  const QString sway = qEnvironmentVariable("SWAYSOCK");
  if (SwayPlacer::isOfThisSession(sway, qEnvironmentVariable("XDG_CURRENT_DESKTOP")))
    return std::make_unique<SwayPlacer>(sway);
  const std::string script = kwinScript("place-panel.js");
  if (script.empty()) return nullptr;
  // Has no effect where no KWin is on the bus.
  return std::make_unique<KWinPlacer>(QString::fromStdString(script));
}

}  // namespace tobrin
