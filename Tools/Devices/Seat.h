/// Which user is in front of the machine. Thread: main.
#pragma once

#include <sys/types.h>
#include <sys/xattr.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace tobrin::testing {

inline const std::filesystem::path seatsFolder = "/run/systemd/seats";

/// Writes what the login manager keeps of the seat.
inline void describeSeat(const std::string& active) {
  std::filesystem::create_directories(seatsFolder);
  std::ofstream(seatsFolder / ".new") << "IS_SEAT0=1\n" << active;
  std::filesystem::rename(seatsFolder / ".new", seatsFolder / "seat0");
}

/// As when a session of the user's comes to the front of the seat.
inline void bringToFront(uid_t user) {
  const std::string id = std::to_string(user);
  describeSeat("ACTIVE=c" + id + "\nACTIVE_UID=" + id + "\n");
}

/// As on a console without a session.
inline void bringNobodyToFront() {
  describeSeat("");
}

inline void removeLoginManager() {
  std::filesystem::remove(seatsFolder / "seat0");
}

/// Lets user 65534 read and write the node, as a seat's login does: version 2 of the list, in
/// entries of kind, rights, id.
inline bool letSomebodyIn(const std::string& node) {
  struct Entry {
    uint16_t kind, rights;
    uint32_t id;
  };
  struct {
    uint32_t version = 2;
    Entry entries[5] = {{1, 6, ~0U}, {2, 6, 65534}, {4, 6, ~0U}, {0x10, 6, ~0U}, {0x20, 0, ~0U}};
  } list;
  return setxattr(node.c_str(), "system.posix_acl_access", &list, sizeof list, 0) == 0;
}

}  // namespace tobrin::testing
