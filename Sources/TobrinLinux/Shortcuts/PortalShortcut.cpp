#include "Shortcuts/PortalShortcut.h"

#include <poll.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "Base/MachTime.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {
namespace {

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* shortcuts = "org.freedesktop.portal.GlobalShortcuts";
constexpr const char* request = "org.freedesktop.portal.Request";
constexpr const char* sessions = "org.freedesktop.portal.Session";
constexpr const char* registry = "org.freedesktop.host.portal.Registry";
constexpr const char* applicationId = "app.tobrin.Tobrin";
constexpr const char* description = "Turn sounds on or off";
// Before the combination, in what is kept between runs.
constexpr const char* asked = "asked ";
constexpr const char* granted = "granted ";
constexpr const char* portalOwnerMatch =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='org.freedesktop.portal.Desktop'";

struct CloseBus {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};
struct UnrefMessage {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

/// The text under `key` in the dictionary that comes next in `message`; nothing where there is
/// none.
std::optional<std::string> textInDictionary(sd_bus_message* message, std::string_view key) {
  std::optional<std::string> result;
  if (sd_bus_message_enter_container(message, 'a', "{sv}") < 0) return result;
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    const char* name = nullptr;
    const char* text = nullptr;
    sd_bus_message_read(message, "s", &name);
    if (name != nullptr && key == name && sd_bus_message_read(message, "v", "s", &text) > 0) {
      result = text;
    } else {
      sd_bus_message_skip(message, "v");
    }
    sd_bus_message_exit_container(message);
  }
  sd_bus_message_exit_container(message);
  return result;
}

/// Enters the list of shortcuts in the dictionary that comes next; false where there is none.
bool enterShortcuts(sd_bus_message* message) {
  if (sd_bus_message_enter_container(message, 'a', "{sv}") < 0) return false;
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    const char* name = nullptr;
    sd_bus_message_read(message, "s", &name);
    if (name != nullptr && std::string_view(name) == "shortcuts")
      return sd_bus_message_enter_container(message, 'v', "a(sa{sv})") > 0;
    sd_bus_message_skip(message, "v");
    sd_bus_message_exit_container(message);
  }
  return false;
}

/// Whether the list of shortcuts that comes next has ours. Some desktops list it while no
/// combination belongs to it yet; then no press would be reported.
bool lists(sd_bus_message* message, std::string_view ours) {
  bool found = false;
  if (sd_bus_message_enter_container(message, 'a', "(sa{sv})") < 0) return found;
  while (sd_bus_message_enter_container(message, 'r', "sa{sv}") > 0) {
    const char* id = nullptr;
    sd_bus_message_read(message, "s", &id);
    const bool isOurs = id != nullptr && id == ours;
    const auto combination = textInDictionary(message, "trigger_description");
    found = found || (isOurs && combination != "");
    sd_bus_message_exit_container(message);
  }
  return found;
}

/// For poll: until the bus wants to be called even if nothing arrives; -1 for never.
int waitLimitMs(sd_bus* bus) {
  uint64_t deadline = 0;  // microseconds on the monotonic clock
  if (sd_bus_get_timeout(bus, &deadline) <= 0 || deadline == UINT64_MAX) return -1;
  const uint64_t now = machNow() / 1000;
  return deadline <= now
             ? 0
             : static_cast<int>(std::min<uint64_t>(deadline - now, 60'000'000) / 1000) + 1;
}

}  // namespace

/// The exchange with the portal: creates a session, lists its shortcuts, binds the combination in
/// it where that was not asked for yet, then gets presses. Each request is answered by a signal on
/// an object named by our token. Runs on one thread of its owner.
struct PortalShortcut::Dialogue {
  Dialogue(std::string wantedTrigger, std::string knownBefore, Listener to, WakeEvent& stopEvent)
      : trigger(std::move(wantedTrigger)),
        listener(std::move(to)),
        stop(stopEvent),
        known(std::move(knownBefore)) {}

  void run();
  [[nodiscard]] bool subscribe();
  void createSession();
  void listShortcuts();
  void bindShortcut();
  void takeListing(bool hasOurs);
  void takeChange(bool hasOurs);
  void setBound(bool now);
  void remember(std::string now);
  void takeResponse(std::string_view token, uint32_t code, sd_bus_message* results);

  static int onNoSession(sd_bus_message* message, void* self, sd_bus_error*);
  static int onNoListing(sd_bus_message* message, void* self, sd_bus_error*);
  static int onNoBinding(sd_bus_message* message, void* self, sd_bus_error*);
  static int onShortcutsChanged(sd_bus_message* message, void* self, sd_bus_error*);
  static int onResponse(sd_bus_message* message, void* self, sd_bus_error*);
  static int onActivated(sd_bus_message* message, void* self, sd_bus_error*);
  static int onSessionClosed(sd_bus_message* message, void* self, sd_bus_error*);
  static int onPortalOwnerChanged(sd_bus_message* message, void* self, sd_bus_error*);

  const std::string trigger;
  // Plasma keeps the keys of an id that it knows, whatever is asked for.
  const std::string id = std::string(PortalShortcut::id) + "-" + trigger;
  const Listener listener;
  WakeEvent& stop;
  std::unique_ptr<sd_bus, CloseBus> bus;
  std::string known;         // what became of the last request, as it is kept between runs
  std::string knownEarlier;  // the same before this session asked
  std::string session;       // its object path; empty while there is none
  bool isCreating = false;   // asked this portal for a session
  bool bound = false;
};

void PortalShortcut::Dialogue::run() {
  nameThisThread("Tobrin.Portal");
  sd_bus* opened = nullptr;
  if (sd_bus_open_user(&opened) < 0) return;
  bus.reset(opened);
  if (!subscribe()) return;
  createSession();
  for (;;) {
    int progress = 0;
    while ((progress = sd_bus_process(bus.get(), nullptr)) > 0) {
    }
    if (progress < 0) break;
    std::array<pollfd, 2> waits = {
        {{stop.fd(), POLLIN, 0},
         {sd_bus_get_fd(bus.get()), static_cast<short>(sd_bus_get_events(bus.get())), 0}}};
    const int limitMs = waitLimitMs(bus.get());
    if (retried([&] { return poll(waits.data(), waits.size(), limitMs); }) < 0) break;
    if (waits[0].revents != 0) break;
  }
  if (!session.empty()) {
    sd_bus_call_method_async(bus.get(), nullptr, portal, session.c_str(), sessions, "Close",
                             nullptr, nullptr, "");
  }
  setBound(false);
}

bool PortalShortcut::Dialogue::subscribe() {
  sd_bus* on = bus.get();
  return sd_bus_match_signal(on, nullptr, portal, nullptr, request, "Response", onResponse, this) >=
             0 &&
         sd_bus_match_signal(on, nullptr, portal, nullptr, sessions, "Closed", onSessionClosed,
                             this) >= 0 &&
         sd_bus_match_signal(on, nullptr, portal, portalPath, shortcuts, "Activated", onActivated,
                             this) >= 0 &&
         sd_bus_match_signal(on, nullptr, portal, portalPath, shortcuts, "ShortcutsChanged",
                             onShortcutsChanged, this) >= 0 &&
         sd_bus_add_match(on, nullptr, portalOwnerMatch, onPortalOwnerChanged, this) >= 0;
}

void PortalShortcut::Dialogue::createSession() {
  // This call may start the portal, whose arrival is reported before it answers; a second session
  // of the same name would end the first.
  if (std::exchange(isCreating, true)) return;
  // Register tells the desktop whose shortcut it is; older portals find that out by themselves. The
  // first portals take shortcuts only together with the session, and later ones ignore them there.
  sd_bus_call_method_async(bus.get(), nullptr, portal, portalPath, registry, "Register", nullptr,
                           nullptr, "sa{sv}", applicationId, 0);
  sd_bus_call_method_async(bus.get(), nullptr, portal, portalPath, shortcuts, "CreateSession",
                           onNoSession, this, "a{sv}", 3, "handle_token", "s", "create",
                           "session_handle_token", "s", "tobrin", "shortcuts", "a(sa{sv})", 1,
                           id.c_str(), 2, "description", "s", description, "preferred_trigger", "s",
                           trigger.c_str());
}

void PortalShortcut::Dialogue::listShortcuts() {
  sd_bus_call_method_async(bus.get(), nullptr, portal, portalPath, shortcuts, "ListShortcuts",
                           onNoListing, this, "oa{sv}", session.c_str(), 1, "handle_token", "s",
                           "list");
}

void PortalShortcut::Dialogue::bindShortcut() {
  if (session.empty()) return;  // closed meanwhile
  // First, as the answer may never come: the user must not be asked at each start.
  knownEarlier = known;
  remember(asked + trigger);
  sd_bus_call_method_async(bus.get(), nullptr, portal, portalPath, shortcuts, "BindShortcuts",
                           onNoBinding, this, "oa(sa{sv})sa{sv}", session.c_str(), 1, id.c_str(), 2,
                           "description", "s", description, "preferred_trigger", "s",
                           trigger.c_str(), "", 1, "handle_token", "s", "bind");
}

// Some desktops keep what was bound, others want to be asked in each session and then agree by
// themselves: only what was asked for in vain is not asked for again.
void PortalShortcut::Dialogue::takeListing(bool hasOurs) {
  const bool isForOther = !known.empty() && known != asked + trigger && known != granted + trigger;
  if (hasOurs && !isForOther) {
    takeChange(true);
  } else if (known != asked + trigger) {
    bindShortcut();
  }
}

void PortalShortcut::Dialogue::takeChange(bool hasOurs) {
  remember((hasOurs ? granted : asked) + trigger);
  setBound(hasOurs);
}

void PortalShortcut::Dialogue::remember(std::string now) {
  if (now == known) return;
  known = std::move(now);
  listener.remember(known);
}

void PortalShortcut::Dialogue::setBound(bool now) {
  if (std::exchange(bound, now) != now) listener.boundChanged(now);
}

void PortalShortcut::Dialogue::takeResponse(std::string_view token, uint32_t code,
                                            sd_bus_message* results) {
  if (token == "create" && code == 0) {
    session = textInDictionary(results, "session_handle").value_or("");
    if (!session.empty()) listShortcuts();
  } else if (token == "list") {
    takeListing(code == 0 && enterShortcuts(results) && lists(results, id));
  } else if (token == "bind") {
    takeChange(code == 0 && enterShortcuts(results) && lists(results, id));
  }
}

int PortalShortcut::Dialogue::onNoSession(sd_bus_message* message, void* self, sd_bus_error*) {
  if (sd_bus_message_is_method_error(message, nullptr) > 0)
    static_cast<Dialogue*>(self)->isCreating = false;
  return 0;
}

int PortalShortcut::Dialogue::onNoListing(sd_bus_message* message, void* self, sd_bus_error*) {
  if (sd_bus_message_is_method_error(message, nullptr) > 0)
    static_cast<Dialogue*>(self)->takeListing(false);
  return 0;
}

// A portal that turns the request down has asked nobody; one that breaks off may have.
int PortalShortcut::Dialogue::onNoBinding(sd_bus_message* message, void* self, sd_bus_error*) {
  auto* dialogue = static_cast<Dialogue*>(self);
  if (sd_bus_message_is_method_error(message, nullptr) > 0 &&
      sd_bus_message_is_method_error(message, SD_BUS_ERROR_NO_REPLY) <= 0)
    dialogue->remember(dialogue->knownEarlier);
  return 0;
}

int PortalShortcut::Dialogue::onShortcutsChanged(sd_bus_message* message, void* self,
                                                 sd_bus_error*) {
  auto* dialogue = static_cast<Dialogue*>(self);
  const char* session = nullptr;
  if (sd_bus_message_read(message, "o", &session) > 0 && dialogue->session == session)
    dialogue->takeChange(lists(message, dialogue->id));
  return 0;
}

int PortalShortcut::Dialogue::onResponse(sd_bus_message* message, void* self, sd_bus_error*) {
  uint32_t code = 0;
  const std::string_view path = sd_bus_message_get_path(message);
  if (sd_bus_message_read(message, "u", &code) <= 0) return 0;
  static_cast<Dialogue*>(self)->takeResponse(path.substr(path.rfind('/') + 1), code, message);
  return 0;
}

int PortalShortcut::Dialogue::onActivated(sd_bus_message* message, void* self, sd_bus_error*) {
  auto* dialogue = static_cast<Dialogue*>(self);
  const char* session = nullptr;
  const char* pressed = nullptr;
  if (sd_bus_message_read(message, "os", &session, &pressed) > 0 && dialogue->session == session &&
      dialogue->id == pressed) {
    dialogue->setBound(true);  // even if it was not listed
    dialogue->listener.pressed();
  }
  return 0;
}

int PortalShortcut::Dialogue::onSessionClosed(sd_bus_message* message, void* self, sd_bus_error*) {
  auto* dialogue = static_cast<Dialogue*>(self);
  if (dialogue->session == sd_bus_message_get_path(message)) {
    dialogue->session.clear();
    dialogue->setBound(false);
  }
  return 0;
}

int PortalShortcut::Dialogue::onPortalOwnerChanged(sd_bus_message* message, void* self,
                                                   sd_bus_error*) {
  auto* dialogue = static_cast<Dialogue*>(self);
  const char* name = nullptr;
  const char* before = nullptr;
  const char* now = nullptr;
  if (sd_bus_message_read(message, "sss", &name, &before, &now) <= 0) return 0;
  if (*before != 0) {
    dialogue->session.clear();
    dialogue->isCreating = false;
    dialogue->setBound(false);
  }
  if (*now != 0) dialogue->createSession();
  return 0;
}

std::string PortalShortcut::trigger(const Hotkey& hotkey, const KeyNaming& naming) {
  std::string result;
  constexpr std::pair<uint32_t, const char*> words[] = {{Modifiers::control, "CTRL+"},
                                                        {Modifiers::option, "ALT+"},
                                                        {Modifiers::shift, "SHIFT+"},
                                                        {Modifiers::command, "LOGO+"}};
  for (const auto& [modifier, word] : words) {
    if (hotkey.modifiers.contains(modifier)) result += word;
  }
  return result + naming.symbol;
}

PortalShortcut::PortalShortcut(std::string trigger, std::string known, Listener listener)
    : dialogue_(std::make_unique<Dialogue>(std::move(trigger), std::move(known),
                                           std::move(listener), stop_)),
      thread_([this] { dialogue_->run(); }) {}

PortalShortcut::~PortalShortcut() {
  stop_.raise();
  thread_.join();
}

}  // namespace tobrin
