#include "Desktop/MakeKeySource.h"

#include "Desktop/MakeKeyTyper.h"
#include "Evdev/EvdevKeySource.h"
#include "Evdev/UinputTyper.h"
#include "X11/XKeySource.h"
#include "X11/XTestTyper.h"

namespace tobrin {
namespace {

bool hearsTheServer(const Environment& environment) {
  const std::string wish = environment("TOBRIN_KEYS");
  const bool fits = !environment("DISPLAY").empty() && sessionKind(environment) == SessionKind::x11;
  return wish == "x11" || (wish != "evdev" && fits);
}

}  // namespace

std::unique_ptr<KeySource> makeKeySource(const Environment& environment) {
  if (hearsTheServer(environment)) return std::make_unique<XKeySource>(environment("DISPLAY"));
  return std::make_unique<EvdevKeySource>();
}

std::unique_ptr<KeyTyper> makeKeyTyper(const Environment& environment) {
  if (hearsTheServer(environment)) return std::make_unique<XTestTyper>();
  return std::make_unique<UinputTyper>();
}

}  // namespace tobrin
