#include "Desktop/Notice.h"

#include "System/SystemBus.h"

namespace tobrin {
namespace {

constexpr uint64_t patienceUs = 2'000'000;
constexpr const char* shower = "org.freedesktop.Notifications";

/// Such texts may hold markup, and names of files may look like it.
std::string withoutMarks(const std::string& text) {
  std::string plain;
  for (const char letter : text) {
    if (letter == '&')
      plain += "&amp;";
    else if (letter == '<')
      plain += "&lt;";
    else
      plain += letter;
  }
  return plain;
}

}  // namespace

bool showNotice(const std::string& title, const std::string& text) {
  sd_bus* opened = nullptr;
  if (sd_bus_open_user(&opened) < 0) return false;
  const SystemBus bus(opened);
  sd_bus_set_method_call_timeout(opened, patienceUs);
  constexpr int asLongAsUsual = -1;
  return sd_bus_call_method(opened, shower, "/org/freedesktop/Notifications", shower, "Notify",
                            nullptr, nullptr, "susssasa{sv}i", "Tobrin", 0U, "app.tobrin.Tobrin",
                            title.c_str(), withoutMarks(text).c_str(), 0, 0, asLongAsUsual) >= 0;
}

}  // namespace tobrin
