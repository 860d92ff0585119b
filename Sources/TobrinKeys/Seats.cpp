#include "Seats.h"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string_view>

#include "System/SystemBus.h"

namespace tobrin {
namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr uint64_t patienceUs = 5'000'000;  // no key is delivered while it is asked

bool isTrue(sd_bus* bus, const char* session, const char* property) {
  int value = 0;
  return sd_bus_get_property_trivial(bus, service, session, sessionInterface, property, nullptr,
                                     'b', &value) >= 0 &&
         value != 0;
}

/// Whether a person works in it: no login prompt, no lock screen's helper.
bool isOfUser(sd_bus* bus, const char* session) {
  char* text = nullptr;
  if (sd_bus_get_property_string(bus, service, session, sessionInterface, "Class", nullptr, &text) <
      0)
    return false;
  const bool result = std::string_view(text).starts_with("user");
  std::free(text);
  return result;
}

Place place(sd_bus* bus, const char* session, const char* seat) {
  uint32_t console = 0;
  const bool answers = sd_bus_get_property_trivial(bus, service, session, sessionInterface, "VTNr",
                                                   nullptr, 'u', &console) >= 0;
  if (!answers || !isTrue(bus, session, "Active") || !isOfUser(bus, session) ||
      isTrue(bus, session, "Remote"))
    return {.kind = Place::Kind::background};
  const auto kind = isTrue(bus, session, "LockedHint") ? Place::Kind::locked : Place::Kind::front;
  return {.kind = kind, .seat = seat, .console = console};
}

}  // namespace

Seats::Seats(sd_bus* bus)
    : bus_(bus), console_(FileDescriptor::open("/sys/class/tty/tty0/active", O_RDONLY)) {
  sd_bus_set_method_call_timeout(bus_, patienceUs);
}

Place Seats::placeOf(uid_t user) const {
  sd_bus_message* reply = nullptr;
  sd_bus_call_method(bus_, service, "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                     "ListSessions", nullptr, &reply, nullptr);
  const BusMessage sessions(reply);
  if (!sessions || sd_bus_message_enter_container(reply, 'a', "(susso)") < 0) return {};
  uint32_t owner = 0;
  const char* seat = nullptr;
  const char* session = nullptr;
  while (sd_bus_message_read(reply, "(susso)", nullptr, &owner, nullptr, &seat, &session) > 0) {
    if (owner != user || *seat == '\0') continue;
    Place found = place(bus_, session, seat);
    if (found.kind != Place::Kind::background) return found;
  }
  return {.kind = Place::Kind::background};
}

bool Seats::isInFront(const Place& place) const {
  if (place.kind != Place::Kind::front) return false;
  if (place.console == 0 || !console_) return true;
  std::array<char, 16> text{};
  const ssize_t length = pread(console_.get(), text.data(), text.size(), 0);
  return length > 0 && std::string_view(text.data(), static_cast<std::size_t>(length)) ==
                           "tty" + std::to_string(place.console) + "\n";
}

}  // namespace tobrin
