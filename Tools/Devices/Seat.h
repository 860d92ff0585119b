/// Who sits in front of the machine.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <fstream>

namespace tobrin::testing {

/// Writes what the login manager writes when a session comes to the front of the seat.
inline void bringToFront(uid_t user) {
  const std::filesystem::path seats = "/run/systemd/seats";
  std::filesystem::create_directories(seats);
  std::ofstream(seats / ".new") << "IS_SEAT0=1\nACTIVE=c" << user << "\nACTIVE_UID=" << user
                                << "\n";
  std::filesystem::rename(seats / ".new", seats / "seat0");
}

}  // namespace tobrin::testing
