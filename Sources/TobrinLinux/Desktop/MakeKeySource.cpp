#include "Desktop/MakeKeySource.h"

#include "Evdev/EvdevKeySource.h"
#include "X11/XKeySource.h"

namespace tobrin {

std::unique_ptr<KeySource> makeKeySource(const Environment& environment) {
  const std::string wish = environment("TOBRIN_KEYS");
  const std::string display = environment("DISPLAY");
  const bool fits = !display.empty() && sessionKind(environment) == SessionKind::x11;
  if (wish == "x11" || (wish != "evdev" && fits)) return std::make_unique<XKeySource>(display);
  return std::make_unique<EvdevKeySource>();
}

}  // namespace tobrin
