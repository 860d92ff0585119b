/// The private desktop session that a test runs in, as seen from inside.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

namespace tobrin::testing {

/// Whether `condition` comes to hold in time; generous, for busy machines.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = std::chrono::seconds(10)) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

/// Disturbs the session's services ("kill-sound", "start-sound", ...); returns when it is done.
inline void tellDesktop(const std::string& command) {
  const char* path = std::getenv("TOBRIN_DESKTOP_CONTROL");
  if (path == nullptr) throw std::runtime_error("not in a private desktop session");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::string(path).copy(address.sun_path, sizeof address.sun_path - 1);
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const std::string line = command + "\n";
  std::string answer;
  if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      write(connection, line.data(), line.size()) == static_cast<ssize_t>(line.size())) {
    for (char next = 0; read(connection, &next, 1) == 1;) {
      answer += next;
    }
  }
  close(connection);
  if (answer.substr(0, 2) != "ok") throw std::runtime_error(command + ": " + answer);
}

}  // namespace tobrin::testing
