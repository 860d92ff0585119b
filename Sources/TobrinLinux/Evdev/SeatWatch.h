/// Whether the user of this program is the one in front of the seat's keyboards: a user's devices
/// stay readable while another user's session is in front, and what is typed there must not be
/// read. Not to be used from two threads at once. Thread: any.
#pragma once

#include <memory>
#include <string>

struct sd_login_monitor;

namespace tobrin {

class SeatWatch final {
 public:
  SeatWatch();

  /// The seat this program belongs to ("seat0").
  [[nodiscard]] const std::string& seat() const { return seat_; }

  /// Whether the session in front is this program's or another one of its user's. False while no
  /// session is in front, as at a login prompt; true where no login manager knows the seat.
  [[nodiscard]] bool isOurs() const;

  /// To poll for reading when `isOurs` may have changed; -1 where no login manager runs.
  [[nodiscard]] int fd() const;

  /// Takes all notices.
  void clear();

 private:
  struct Unref {
    void operator()(sd_login_monitor* monitor) const;
  };
  std::string session_;  // this program's own; may be empty
  std::string seat_;
  std::unique_ptr<sd_login_monitor, Unref> monitor_;
};

}  // namespace tobrin
