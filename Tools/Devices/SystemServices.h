/// A system bus of a test's own, with stand-ins for the login manager and the service that asks
/// administrators: the same names, methods and signals, told by the test what to say. Services that
/// the bus may start are real. Thread: one at a time.
#pragma once

#include <fcntl.h>
#include <linux/vt.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>

#include "Support/TempFolder.h"

namespace tobrin::testing {

/// Switches the console in front, as the kernel has it; false where there are none.
inline bool showConsole(unsigned number) {
  const int console = open("/dev/tty0", O_RDWR | O_CLOEXEC);
  const bool done =
      ioctl(console, VT_ACTIVATE, number) == 0 && ioctl(console, VT_WAITACTIVE, number) == 0;
  close(console);
  return done;
}

class SystemServices final {
 public:
  struct Session {
    uint32_t user = 0;
    uint32_t console = 0;
    int isActive = 0, isLocked = 0, isRemote = 0;
    const char* kind = "user";
  };

  /// `command` is started, as a service manager would, when somebody asks for `name`.
  SystemServices(const std::string& name, const std::string& command) {
    const auto services = folder.path() / "services";
    std::filesystem::create_directories(services);
    std::filesystem::create_directories(state());
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));  // any user calls
    std::ofstream(services / (name + ".service"))
        << "[D-BUS Service]\nName=" << name << "\nExec=" << command << "\n";
    std::ofstream(folder.path() / "bus.conf")
        << "<busconfig><type>session</type><listen>unix:path=" << socket()
        << "</listen><servicedir>" << services.string()
        << "</servicedir><auth>EXTERNAL</auth><policy context='default'><allow "
           "send_destination='*' "
           "eavesdrop='true'/><allow eavesdrop='true'/><allow own='*'/><allow user='*'/></policy>"
           "</busconfig>";
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + socket()).c_str(), 1);
    setenv("STATE_DIRECTORY", state().c_str(), 1);
    start();
  }
  ~SystemServices() {
    stop();
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
  }
  SystemServices(const SystemServices&) = delete;
  SystemServices& operator=(const SystemServices&) = delete;

  /// The whole bus ends and starts, with all services on it.
  void restart() {
    stop();
    start();
  }

  /// What the login manager says of its two sessions from now on; tells everybody.
  void change(const Session& first, const Session& second) {
    const std::scoped_lock lock(mutex_);
    sessions_[0] = first;
    sessions_[1] = second;
    for (const char* path : sessionPaths)
      sd_bus_emit_properties_changed(bus_, path, "org.freedesktop.login1.Session", "Active",
                                     "LockedHint", nullptr);
    sd_bus_flush(bus_);
  }

  /// The process that has this name; 0 where none has.
  pid_t ownerOf(const char* name) {
    const std::scoped_lock lock(mutex_);
    sd_bus_creds* creds = nullptr;
    pid_t process = 0;
    if (sd_bus_get_name_creds(bus_, name, SD_BUS_CREDS_PID, &creds) >= 0)
      sd_bus_creds_get_pid(creds, &process);
    sd_bus_creds_unref(creds);
    return process;
  }

  [[nodiscard]] std::filesystem::path state() const { return folder.path() / "state"; }

  std::atomic<bool> agrees{false};   ///< what the administrator answers
  std::atomic<bool> hasAgent{true};  ///< whether there is a program that asks one
  std::atomic<int> questions{0};     ///< how often one was asked

 private:
  static constexpr const char* sessionPaths[] = {"/org/freedesktop/login1/session/_31",
                                                 "/org/freedesktop/login1/session/_32"};

  [[nodiscard]] std::string socket() const { return (folder.path() / "bus").string(); }

  void start() {
    startDaemon();
    sd_bus_open_system(&bus_);
    addLoginManager();
    addPolicyService();
    sd_bus_request_name(bus_, "org.freedesktop.login1", 0);
    sd_bus_request_name(bus_, "org.freedesktop.PolicyKit1", 0);
    isEnding_ = false;
    thread_ = std::thread([this] {
      while (!isEnding_) {
        {
          const std::scoped_lock lock(mutex_);
          while (sd_bus_process(bus_, nullptr) > 0) {
          }
        }
        pollfd wait{sd_bus_get_fd(bus_), POLLIN, 0};  // the bus itself is the lock's
        poll(&wait, 1, 2);
      }
    });
  }

  /// Returns once it can be reached.
  void startDaemon() {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    daemon_ = fork();
    if (daemon_ == 0) {
      const std::string file = "--config-file=" + (folder.path() / "bus.conf").string();
      dup2(ends[1], STDOUT_FILENO);
      execlp("dbus-daemon", "dbus-daemon", "--nofork", "--print-address", file.c_str(), nullptr);
      _exit(97);
    }
    close(ends[1]);
    char first = 0;
    static_cast<void>(!read(ends[0], &first, 1));
    close(ends[0]);
  }

  void stop() {
    isEnding_ = true;
    thread_.join();
    bus_ = sd_bus_close_unref(bus_);
    kill(daemon_, SIGKILL);
    waitpid(daemon_, nullptr, 0);
    std::filesystem::remove(socket());
  }

  void addLoginManager() {
    static const sd_bus_vtable manager[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("ListSessions", "", "a(susso)", &listSessions, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    constexpr uint64_t told = SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;
    static const sd_bus_vtable session[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_PROPERTY("VTNr", "u", nullptr, offsetof(Session, console), told),
        SD_BUS_PROPERTY("Active", "b", nullptr, offsetof(Session, isActive), told),
        SD_BUS_PROPERTY("LockedHint", "b", nullptr, offsetof(Session, isLocked), told),
        SD_BUS_PROPERTY("Remote", "b", nullptr, offsetof(Session, isRemote), told),
        SD_BUS_PROPERTY("Class", "s", nullptr, offsetof(Session, kind), told),
        SD_BUS_VTABLE_END};
    sd_bus_add_object_vtable(bus_, nullptr, "/org/freedesktop/login1",
                             "org.freedesktop.login1.Manager", manager, this);
    for (int i = 0; i < 2; ++i)
      sd_bus_add_object_vtable(bus_, nullptr, sessionPaths[i], "org.freedesktop.login1.Session",
                               session, &sessions_[i]);
  }

  void addPolicyService() {
    static const sd_bus_vtable authority[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("CheckAuthorization", "(sa{sv})sa{ss}us", "(bba{ss})", &checkAuthorization,
                      SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    sd_bus_add_object_vtable(bus_, nullptr, "/org/freedesktop/PolicyKit1/Authority",
                             "org.freedesktop.PolicyKit1.Authority", authority, this);
  }

  static int listSessions(sd_bus_message* call, void* self, sd_bus_error*) {
    const auto* const all = static_cast<SystemServices*>(self)->sessions_;
    return sd_bus_reply_method_return(call, "a(susso)", 2, "1", all[0].user, "one", "seat0",
                                      sessionPaths[0], "2", all[1].user, "two", "seat0",
                                      sessionPaths[1]);
  }

  static int checkAuthorization(sd_bus_message* call, void* self, sd_bus_error*) {
    auto* const services = static_cast<SystemServices*>(self);
    const char* action = nullptr;
    sd_bus_message_skip(call, "(sa{sv})");
    sd_bus_message_read(call, "s", &action);
    ++services->questions;
    const bool isKnown = std::string(action) == "app.tobrin.keys.listen";
    return sd_bus_reply_method_return(call, "(bba{ss})", isKnown && services->agrees,
                                      !services->hasAgent, 0);
  }

  const TempFolder folder;
  std::mutex mutex_;
  Session sessions_[2];
  sd_bus* bus_ = nullptr;
  pid_t daemon_ = -1;
  std::atomic<bool> isEnding_{false};
  std::thread thread_;
};

}  // namespace tobrin::testing
