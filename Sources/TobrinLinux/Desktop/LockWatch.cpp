#include "Desktop/LockWatch.h"

#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "System/SystemBus.h"

namespace tobrin {
namespace {

constexpr const char* loginManager = "org.freedesktop.login1";
constexpr const char* session = "org.freedesktop.login1.Session";
constexpr const char* properties = "org.freedesktop.DBus.Properties";

/// Each is a name on the bus and an interface of that name.
struct Saver {
  const char* name;
  const char* path;
};
constexpr std::array savers = {Saver{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
                               Saver{"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
                               Saver{"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
                               Saver{"org.mate.ScreenSaver", "/org/mate/ScreenSaver"}};

struct LoopUnref {
  void operator()(sd_event* loop) const { sd_event_unref(loop); }
};

}  // namespace

struct LockWatch::Buses {
  /// One that may lock the screen.
  struct Locker {
    Buses* buses = nullptr;
    const Saver* saver = nullptr;  // null: the login manager
    bool isLocking = false;
  };

  std::function<void(bool)> onChange;
  std::unique_ptr<sd_event, LoopUnref> loop;
  SystemBus systemBus, sessionBus;
  std::array<Locker, savers.size() + 1> lockers;
  bool isLocked = false;

  explicit Buses(std::function<void(bool)> change) : onChange(std::move(change)) {
    sd_event* made = nullptr;
    if (sd_event_new(&made) < 0) return;
    loop.reset(made);
    connect(systemBus, &sd_bus_open_system);
    connect(sessionBus, &sd_bus_open_user);
    for (std::size_t i = 0; i < lockers.size(); ++i) {
      lockers[i].buses = this;
      if (i < savers.size()) lockers[i].saver = &savers[i];
      if (i < savers.size() ? sessionBus != nullptr : systemBus != nullptr) watch(lockers[i]);
    }
  }

  void connect(SystemBus& bus, int (*open)(sd_bus**)) const {
    sd_bus* made = nullptr;
    if (open(&made) < 0) return;
    bus.reset(made);
    sd_bus_attach_event(made, loop.get(), SD_EVENT_PRIORITY_NORMAL);
  }

  /// Asynchronous, so that a slow bus does not hold up the start.
  void watch(Locker& locker) const {
    const auto hear = [&](sd_bus* bus, const std::string& what, sd_bus_message_handler_t handler) {
      sd_bus_add_match_async(bus, nullptr, what.c_str(), handler, nullptr, &locker);
    };
    if (locker.saver == nullptr) {
      hear(systemBus.get(),
           std::string("type='signal',sender='") + loginManager + "',interface='" + properties +
               "',member='PropertiesChanged',arg0='" + session + "'",
           &mayHaveChanged);
    } else {
      const std::string name = locker.saver->name;
      hear(sessionBus.get(),
           "type='signal',sender='" + name + "',interface='" + name + "',member='ActiveChanged'",
           &mayHaveChanged);
      hear(sessionBus.get(),
           "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + name +
               "'",
           &mayHaveChanged);
    }
    ask(locker);
  }

  /// The answer counts, not what a signal says: two objects of one saver may speak, and the hints
  /// of other sessions come along.
  static void ask(Locker& locker) {
    sd_bus_message* made = nullptr;
    const Saver* const saver = locker.saver;
    sd_bus* const bus =
        (saver == nullptr ? locker.buses->systemBus : locker.buses->sessionBus).get();
    if (saver == nullptr) {
      sd_bus_message_new_method_call(bus, &made, loginManager,
                                     "/org/freedesktop/login1/session/auto", properties, "Get");
      sd_bus_message_append(made, "ss", session, "LockedHint");
    } else {
      sd_bus_message_new_method_call(bus, &made, saver->name, saver->path, saver->name,
                                     "GetActive");
    }
    const BusMessage question(made);
    sd_bus_message_set_auto_start(made, 0);
    sd_bus_call_async(bus, nullptr, made, &answered, &locker, 0);
  }

  static int mayHaveChanged(sd_bus_message*, void* locker, sd_bus_error*) {
    ask(*static_cast<Locker*>(locker));
    return 0;
  }

  static int answered(sd_bus_message* answer, void* self, sd_bus_error*) {
    auto& locker = *static_cast<Locker*>(self);
    int isLocking = 0;  // stays 0 where nobody answers
    if (sd_bus_message_is_method_error(answer, nullptr) == 0) {
      if (locker.saver == nullptr) sd_bus_message_enter_container(answer, 'v', "b");
      sd_bus_message_read(answer, "b", &isLocking);
    }
    locker.isLocking = isLocking != 0;
    locker.buses->publish();
    return 0;
  }

  void publish() {
    const bool isAny = std::any_of(lockers.begin(), lockers.end(),
                                   [](const Locker& locker) { return locker.isLocking; });
    if (std::exchange(isLocked, isAny) != isAny) onChange(isAny);
  }
};

LockWatch::LockWatch(std::function<void(bool isLocked)> onChange)
    : buses_(std::make_unique<Buses>(std::move(onChange))) {
  process();  // sends what was asked
}

LockWatch::~LockWatch() = default;

int LockWatch::descriptor() const {
  return buses_->loop ? sd_event_get_fd(buses_->loop.get()) : -1;
}

bool LockWatch::isLocked() const {
  return buses_->isLocked;
}

void LockWatch::process() {
  while (buses_->loop && sd_event_run(buses_->loop.get(), 0) > 0) {
  }
}

}  // namespace tobrin
