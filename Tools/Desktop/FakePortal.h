/// A desktop portal that offers global shortcuts, on the session bus of this process.
#pragma once

#include <atomic>
#include <mutex>
#include <string>

#include "Tools/Desktop/PrivateBus.h"

namespace tobrin::testing {

class FakePortal final {
 public:
  /// `answer` is what the user says to the shortcut: 0 agrees, 1 refuses.
  explicit FakePortal(uint32_t answer) : answer_(answer) {}

  /// The user presses the combination.
  void activate() { activations_.fetch_add(1); }

  /// The combination last asked for; empty where none was.
  [[nodiscard]] std::string trigger() const {
    const std::scoped_lock lock(mutex_);
    return trigger_;
  }

 private:
  static constexpr const char* path = "/org/freedesktop/portal/desktop";
  static constexpr const char* shortcuts = "org.freedesktop.portal.GlobalShortcuts";
  static constexpr const char* session = "/org/freedesktop/portal/desktop/session/1_1/tobrin";

  static const sd_bus_vtable* table() {
    static const sd_bus_vtable result[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("CreateSession", "a{sv}", "o", onCreate, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("BindShortcuts", "oa(sa{sv})sa{sv}", "o", onBind, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_SIGNAL("Activated", "osta{sv}", 0), SD_BUS_VTABLE_END};
    return result;
  }

  static void respond(sd_bus_message* call, const char* token, uint32_t code) {
    const std::string request = std::string(path) + "/request/1_1/" + token;
    sd_bus* bus = sd_bus_message_get_bus(call);
    sd_bus_reply_method_return(call, "o", request.c_str());
    sd_bus_emit_signal(bus, request.c_str(), "org.freedesktop.portal.Request", "Response", "ua{sv}",
                       code, 2, "other", "u", 7U, "session_handle", "s", session);
  }
  static int onCreate(sd_bus_message* call, void*, sd_bus_error*) {
    respond(call, "create", 0);
    return 1;
  }
  static int onBind(sd_bus_message* call, void* self, sd_bus_error*) {
    auto* portal = static_cast<FakePortal*>(self);
    const char *ignored = nullptr, *trigger = nullptr;
    sd_bus_message_read(call, "o", &ignored);
    sd_bus_message_enter_container(call, 'a', "(sa{sv})");
    sd_bus_message_enter_container(call, 'r', "sa{sv}");
    sd_bus_message_read(call, "s", &ignored);
    sd_bus_message_enter_container(call, 'a', "{sv}");
    sd_bus_message_skip(call, "{sv}");
    sd_bus_message_read(call, "{sv}", &ignored, "s", &trigger);
    {
      const std::scoped_lock lock(portal->mutex_);
      portal->trigger_ = trigger;
    }
    respond(call, "bind", portal->answer_);
    return 1;
  }

  void tellActivations(sd_bus* bus) {
    for (; activations_ > 0; --activations_) {
      sd_bus_emit_signal(bus, path, shortcuts, "Activated", "osta{sv}", session, "toggle-sounds",
                         uint64_t{1}, 0);
    }
  }

  const uint32_t answer_;
  std::atomic<int> activations_{0};
  mutable std::mutex mutex_;
  std::string trigger_;  // guarded by mutex_
  // Last: its thread uses the rest.
  BusService service_{sd_bus_open_user,
                      "org.freedesktop.portal.Desktop",
                      path,
                      shortcuts,
                      table(),
                      this,
                      [this](sd_bus* bus) { tellActivations(bus); }};
};

}  // namespace tobrin::testing
