#include "Evdev/SeatWatch.h"

#include <systemd/sd-login.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "Base/Environment.h"

namespace tobrin {
namespace {

/// Takes over a text that the login library has allocated.
std::string take(char* text) {
  std::string result = text == nullptr ? "" : text;
  std::free(text);
  return result;
}

std::string sessionOfThisProcess() {
  char* session = nullptr;
  return sd_pid_get_session(0, &session) >= 0 ? take(session) : "";
}

std::string seatOf(const std::string& session) {
  char* seat = nullptr;
  if (!session.empty() && sd_session_get_seat(session.c_str(), &seat) >= 0) return take(seat);
  // A service of the user's belongs to no session.
  const std::string named = processVariable("XDG_SEAT");
  return named.empty() ? "seat0" : named;
}

}  // namespace

void SeatWatch::Unref::operator()(sd_login_monitor* monitor) const {
  sd_login_monitor_unref(monitor);
}

SeatWatch::SeatWatch() : session_(sessionOfThisProcess()), seat_(seatOf(session_)) {
  sd_login_monitor* monitor = nullptr;
  if (sd_login_monitor_new("seat", &monitor) >= 0) monitor_.reset(monitor);
}

bool SeatWatch::isOurs() const {
  char* active = nullptr;
  uid_t user = 0;
  const int status = sd_seat_get_active(seat_.c_str(), &active, &user);
  if (status < 0) return status != -ENODATA;  // no session in front: the seat shows a login prompt
  const std::string session = take(active);
  return session == session_ || user == geteuid();
}

int SeatWatch::fd() const {
  return monitor_ ? sd_login_monitor_get_fd(monitor_.get()) : -1;
}

void SeatWatch::clear() {
  if (monitor_) sd_login_monitor_flush(monitor_.get());
}

}  // namespace tobrin
