#include "Front/KWinFrontFeed.h"

#include <systemd/sd-event.h>

#include <utility>

namespace tobrin {
namespace {

constexpr const char* kwin = "org.kde.KWin";
constexpr const char* scripting = "org.kde.kwin.Scripting";
constexpr const char* ourName = "app.tobrin.FrontWindow";
constexpr const char* ourPath = "/app/tobrin/FrontWindow";
constexpr uint64_t patienceUs = 2'000'000;

}  // namespace

void KWinFrontFeed::LoopUnref::operator()(sd_event* loop) const {
  sd_event_unref(loop);
}

KWinFrontFeed::KWinFrontFeed(std::string script) : script_(std::move(script)) {
  const bool hasKWin = connect() && !owner().empty() && listen();
  if (hasKWin && load()) return;
  if (hasKWin) unload();  // it may only have been late with its answer
  loop_.reset();
}

KWinFrontFeed::~KWinFrontFeed() {
  if (loop_) unload();
}

bool KWinFrontFeed::connect() {
  sd_event* loop = nullptr;
  sd_bus* bus = nullptr;
  if (sd_event_new(&loop) < 0) return false;
  loop_.reset(loop);
  if (sd_bus_open_user(&bus) < 0) return false;
  bus_.reset(bus);
  sd_bus_set_method_call_timeout(bus, patienceUs);
  return sd_bus_attach_event(bus, loop, SD_EVENT_PRIORITY_NORMAL) >= 0;
}

bool KWinFrontFeed::listen() {
  static const sd_bus_vtable methods[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Changed", "sb", "", &reported, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};
  return sd_bus_add_object_vtable(bus_.get(), nullptr, ourPath, ourName, methods, this) >= 0 &&
         sd_bus_match_signal(bus_.get(), nullptr, "org.freedesktop.DBus", nullptr,
                             "org.freedesktop.DBus", "NameOwnerChanged", &ownerChanged,
                             this) >= 0 &&
         sd_bus_request_name(bus_.get(), ourName, 0) >= 0;
}

/// KWin's name on the bus; empty where it does not run.
std::string KWinFrontFeed::owner() const {
  sd_bus_message* answer = nullptr;
  const char* name = "";
  sd_bus_call_method(bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                     "org.freedesktop.DBus", "GetNameOwner", nullptr, &answer, "s", kwin);
  const BusMessage received(answer);
  if (received) sd_bus_message_read(answer, "s", &name);
  return name;
}

/// A script of a Tobrin that was killed may still be there.
bool KWinFrontFeed::load() {
  kwin_ = owner();
  unload();
  sd_bus_message* answer = nullptr;
  int number = -1;
  sd_bus_call_method(bus_.get(), kwin, "/Scripting", scripting, "loadScript", nullptr, &answer,
                     "ss", script_.c_str(), ourName);
  const BusMessage received(answer);
  if (received) sd_bus_message_read(answer, "i", &number);
  return number >= 0 && sd_bus_call_method(bus_.get(), kwin, "/Scripting", scripting, "start",
                                           nullptr, nullptr, "") >= 0;
}

void KWinFrontFeed::unload() const {
  sd_bus_call_method(bus_.get(), kwin, "/Scripting", scripting, "unloadScript", nullptr, nullptr,
                     "s", ourName);
}

int KWinFrontFeed::descriptor() const {
  return loop_ ? sd_event_get_fd(loop_.get()) : -1;
}

bool KWinFrontFeed::process(const Report& report) {
  report_ = &report;
  while (sd_event_run(loop_.get(), 0) > 0) {
  }
  report_ = nullptr;
  return !isLost_ && sd_bus_is_open(bus_.get()) > 0;
}

int KWinFrontFeed::reported(sd_bus_message* report, void* self, sd_bus_error*) {
  auto& feed = *static_cast<KWinFrontFeed*>(self);
  const char* name = nullptr;
  int fillsScreen = 0;
  if (sd_bus_message_get_sender(report) == feed.kwin_ &&
      sd_bus_message_read(report, "sb", &name, &fillsScreen) > 0)
    (*feed.report_)({.app = name, .fillsScreen = fillsScreen != 0});
  return sd_bus_reply_method_return(report, "");
}

/// A KWin that has started again knows nothing of the script.
int KWinFrontFeed::ownerChanged(sd_bus_message* notice, void* self, sd_bus_error*) {
  auto& feed = *static_cast<KWinFrontFeed*>(self);
  const char *name = "", *newOwner = "";
  sd_bus_message_read(notice, "sss", &name, nullptr, &newOwner);
  if (std::string(name) != kwin || newOwner == feed.kwin_) return 0;
  if (*newOwner == '\0')
    (*feed.report_)({.knowledge = Front::Knowledge::desktopDoesNotTell});
  else
    feed.isLost_ = !feed.load();
  return 0;
}

}  // namespace tobrin
