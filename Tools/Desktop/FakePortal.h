/// A desktop portal that offers global shortcuts, on the session bus of this process. Thread: main.
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Tools/Desktop/PrivateBus.h"

namespace tobrin::testing {

class FakePortal final {
 public:
  /// What is listed, by id, and the combinations as the desktop describes them.
  using Listing = std::map<std::string, std::string>;
  static constexpr const char* id = "toggle-sounds-CTRL+ALT+LOGO+k";
  static inline const Listing ours = {{id, "Meta+K"}};

  struct Behaviour {
    bool answers = true;      // to what is asked of the user
    uint32_t code = 0;        // the user agrees; 1: refuses
    Listing known = {};       // before anything is asked
    bool takesEarly = false;  // `known` only where the shortcut came with the session
    Listing bound = ours;     // in the answer
    bool binds = true;        // false: turns the request down
  };

  explicit FakePortal(Behaviour behaviour) : behaviour_(std::move(behaviour)) {}

  /// The user presses the combination.
  void activate() { activations_.fetch_add(1); }

  /// The user changes the combinations in the desktop's settings.
  void change(Listing listing) {
    const std::scoped_lock lock(mutex_);
    changed_ = std::move(listing);
  }

  /// The combinations asked for so far.
  [[nodiscard]] std::vector<std::string> asked() const {
    const std::scoped_lock lock(mutex_);
    return asked_;
  }

  [[nodiscard]] bool hasListed() const { return hasListed_; }

 private:
  static constexpr const char* path = "/org/freedesktop/portal/desktop";
  static constexpr const char* shortcuts = "org.freedesktop.portal.GlobalShortcuts";
  static constexpr const char* session = "/org/freedesktop/portal/desktop/session/1_1/tobrin";

  static const sd_bus_vtable* table() {
    static const sd_bus_vtable result[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("CreateSession", "a{sv}", "o", onCreate, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("ListShortcuts", "oa{sv}", "o", onList, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("BindShortcuts", "oa(sa{sv})sa{sv}", "o", onBind, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_SIGNAL("Activated", "osta{sv}", 0),
        SD_BUS_VTABLE_END};
    return result;
  }

  static void append(sd_bus_message* message, const Listing& listing) {
    sd_bus_message_open_container(message, 'a', "(sa{sv})");
    for (const auto& [id, trigger] : listing) {
      sd_bus_message_append(message, "(sa{sv})", id.c_str(), 2, "description", "s", "Something",
                            "trigger_description", "s", trigger.c_str());
    }
    sd_bus_message_close_container(message);
  }

  static void respond(sd_bus_message* call, const char* token, uint32_t code,
                      const Listing& listing = {}) {
    const std::string request = std::string(path) + "/request/1_1/" + token;
    sd_bus_reply_method_return(call, "o", request.c_str());
    sd_bus_message* response = nullptr;
    sd_bus_message_new_signal(sd_bus_message_get_bus(call), &response, request.c_str(),
                              "org.freedesktop.portal.Request", "Response");
    sd_bus_message_append(response, "u", code);
    sd_bus_message_open_container(response, 'a', "{sv}");
    sd_bus_message_append(response, "{sv}{sv}", "other", "u", 7U, "session_handle", "s", session);
    sd_bus_message_open_container(response, 'e', "sv");
    sd_bus_message_append(response, "s", "shortcuts");
    sd_bus_message_open_container(response, 'v', "a(sa{sv})");
    append(response, listing);
    for (int open = 0; open < 3; ++open)
      sd_bus_message_close_container(response);
    sd_bus_send(nullptr, response, nullptr);
    sd_bus_message_unref(response);
  }
  static int onCreate(sd_bus_message* call, void* self, sd_bus_error*) {
    auto* portal = static_cast<FakePortal*>(self);
    const char* option = "";
    sd_bus_message_enter_container(call, 'a', "{sv}");
    while (sd_bus_message_enter_container(call, 'e', "sv") > 0) {
      sd_bus_message_read(call, "s", &option);
      sd_bus_message_skip(call, "v");
      sd_bus_message_exit_container(call);
    }
    portal->cameEarly_ = option == std::string("shortcuts");
    respond(call, "create", ++portal->sessions_ == 1 ? 0 : 2);
    return 1;
  }
  /// A second session of the same name ends the first.
  [[nodiscard]] bool refuses(sd_bus_message* call) const {
    if (sessions_ == 1 && behaviour_.binds) return false;
    sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "Invalid session");
    return true;
  }
  static int onList(sd_bus_message* call, void* self, sd_bus_error*) {
    auto* portal = static_cast<FakePortal*>(self);
    const Behaviour& behaviour = portal->behaviour_;
    const bool knows = !behaviour.takesEarly || portal->cameEarly_;
    respond(call, "list", 0, knows ? behaviour.known : Listing{});
    portal->hasListed_ = true;
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
    const Behaviour& behaviour = portal->behaviour_;
    if (!portal->refuses(call) && behaviour.answers)
      respond(call, "bind", behaviour.code, behaviour.bound);
    const std::scoped_lock lock(portal->mutex_);
    portal->asked_.emplace_back(trigger);
    return 1;
  }

  void tellChanges(sd_bus* bus) {
    const std::scoped_lock lock(mutex_);
    if (!changed_) return;
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(bus, &signal, path, shortcuts, "ShortcutsChanged");
    sd_bus_message_append(signal, "o", session);
    append(signal, *changed_);
    sd_bus_send(nullptr, signal, nullptr);
    sd_bus_message_unref(signal);
    changed_.reset();
  }
  void tellActivations(sd_bus* bus) {
    for (; activations_ > 0; --activations_) {
      sd_bus_emit_signal(bus, path, shortcuts, "Activated", "osta{sv}", session, id, uint64_t{1},
                         0);
    }
  }

  const Behaviour behaviour_;
  std::atomic<int> activations_{0};
  std::atomic<bool> hasListed_{false};
  int sessions_ = 0;  // the service's thread's, like the next
  bool cameEarly_ = false;
  mutable std::mutex mutex_;
  std::vector<std::string> asked_;  // guarded by mutex_
  std::optional<Listing> changed_;  // guarded by mutex_
  // Last: its thread uses the rest.
  BusService service_{sd_bus_open_user,
                      "org.freedesktop.portal.Desktop",
                      path,
                      shortcuts,
                      table(),
                      this,
                      [this](sd_bus* bus) {
                        tellChanges(bus);
                        tellActivations(bus);
                      }};
};

}  // namespace tobrin::testing
