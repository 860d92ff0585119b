/// A session bus of the test's own and a desktop portal on it that offers global shortcuts.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace tobrin::testing {

/// Its address is this process's DBUS_SESSION_BUS_ADDRESS while it lives.
class PrivateBus final {
 public:
  PrivateBus() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
      const std::string print = "--print-address=" + std::to_string(ends[1]);
      execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--address=unix:tmpdir=/tmp",
             print.c_str(), nullptr);
      _exit(127);
    }
    close(ends[1]);
    std::string address;
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
      address += c;
    close(ends[0]);
    if (address.empty()) throw std::runtime_error("dbus-daemon did not start");
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  }
  ~PrivateBus() {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

 private:
  pid_t process_ = -1;
};

class FakePortal final {
 public:
  /// `answer` is what the user says to the shortcut: 0 agrees, 1 refuses.
  explicit FakePortal(uint32_t answer) : answer_(answer) {
    if (sd_bus_open_user(&bus_) < 0) throw std::runtime_error("no bus");
    sd_bus_add_object_vtable(bus_, nullptr, path, shortcuts, table(), this);
    sd_bus_request_name(bus_, "org.freedesktop.portal.Desktop", 0);
    thread_ = std::thread([this] { serve(); });
  }
  ~FakePortal() {
    stopping_ = true;
    thread_.join();
    sd_bus_flush_close_unref(bus_);
  }
  FakePortal(const FakePortal&) = delete;
  FakePortal& operator=(const FakePortal&) = delete;

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

  void serve() {
    while (!stopping_) {
      while (sd_bus_process(bus_, nullptr) > 0) {
      }
      for (; activations_ > 0; --activations_) {
        sd_bus_emit_signal(bus_, path, shortcuts, "Activated", "osta{sv}", session, "toggle-sounds",
                           uint64_t{1}, 0);
      }
      pollfd wait{sd_bus_get_fd(bus_), POLLIN, 0};
      poll(&wait, 1, 5);
    }
  }

  const uint32_t answer_;
  sd_bus* bus_ = nullptr;
  std::atomic<bool> stopping_{false};
  std::atomic<int> activations_{0};
  mutable std::mutex mutex_;
  std::string trigger_;  // guarded by mutex_
  std::thread thread_;
};

}  // namespace tobrin::testing
