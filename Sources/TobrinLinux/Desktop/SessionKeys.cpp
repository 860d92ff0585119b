#include "Desktop/SessionKeys.h"

#include "Desktop/SessionKind.h"
#include "Evdev/DeviceKeySource.h"
#include "Evdev/UinputTyper.h"
#include "X11/XKeySource.h"
#include "X11/XTestTyper.h"

namespace tobrin {
namespace {

std::string displayOf(const Environment& environment) {
  return environment("DISPLAY").value_or("");
}

bool comeFromTheServer(const Environment& environment) {
  const std::string wish = environment("TOBRIN_KEYS").value_or("");
  const bool fits = !displayOf(environment).empty() && sessionKind(environment) == SessionKind::x11;
  return wish == "x11" || (wish != "evdev" && fits);
}

}  // namespace

std::unique_ptr<KeySource> makeKeySource(const Environment& environment) {
  if (comeFromTheServer(environment)) return std::make_unique<XKeySource>(displayOf(environment));
  return std::make_unique<DeviceKeySource>();
}

std::unique_ptr<KeyTyper> makeKeyTyper(const Environment& environment) {
  if (comeFromTheServer(environment)) return std::make_unique<XTestTyper>();
  return std::make_unique<UinputTyper>();
}

}  // namespace tobrin
