#include "Desktop/SessionKind.h"

#include <systemd/sd-login.h>

#include <cstdlib>
#include <optional>

#include "X11/XServerKind.h"

namespace tobrin {
namespace {

std::optional<SessionKind> graphicalKind(const std::string& type) {
  if (type == "x11") return SessionKind::x11;
  if (type == "wayland") return SessionKind::wayland;
  return std::nullopt;  // a console, from which a display server may have been started
}

std::string sessionTypeByLoginManager(const std::string& session) {
  if (session.empty()) return {};
  char* type = nullptr;
  if (sd_session_get_type(session.c_str(), &type) < 0) return {};
  std::string result = type;
  std::free(type);
  return result;
}

}  // namespace

SessionKind sessionKind(const Environment& variables) {
  const auto environment = [&](const char* name) { return variables(name).value_or(""); };
  if (const auto kind = graphicalKind(environment("XDG_SESSION_TYPE"))) return *kind;
  if (!environment("WAYLAND_DISPLAY").empty()) return SessionKind::wayland;
  const std::string type = sessionTypeByLoginManager(environment("XDG_SESSION_ID"));
  if (const auto kind = graphicalKind(type)) return *kind;
  switch (xServerKind(environment("DISPLAY"))) {
    case XServerKind::own:
      return SessionKind::x11;
    case XServerKind::withinWayland:
      return SessionKind::wayland;
    case XServerKind::none:
      break;
  }
  return SessionKind::console;
}

}  // namespace tobrin
