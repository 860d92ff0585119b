#include "Desktop/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <optional>

namespace tobrin {
namespace {

std::optional<sockaddr_un> address(const std::filesystem::path& path) {
  sockaddr_un result{};
  result.sun_family = AF_UNIX;
  if (path.native().size() >= sizeof result.sun_path) return std::nullopt;
  std::memcpy(result.sun_path, path.c_str(), path.native().size());
  return result;
}

const sockaddr* generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);  // as the sockets interface wants it
}

int unixSocket() {
  return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

}  // namespace

SingleInstance::SingleInstance(const std::filesystem::path& folder) {
  if (folder.empty()) return;
  socketPath_ = folder / "tobrin.socket";
  constexpr mode_t ownerOnly = 0600;
  lock_ = open((folder / "tobrin.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
  if (lock_ < 0) return;
  isFirst_ = flock(lock_, LOCK_EX | LOCK_NB) == 0;
  if (isFirst_) listen();
}

SingleInstance::~SingleInstance() {
  if (socket_ >= 0) {
    unlink(socketPath_.c_str());  // while the lock is still ours
    close(socket_);
  }
  if (lock_ >= 0) close(lock_);
}

void SingleInstance::listen() {
  const auto where = address(socketPath_);
  if (!where) return;
  socket_ = unixSocket();
  if (socket_ < 0) return;
  unlink(socketPath_.c_str());  // left by an instance that crashed: the lock says it is gone
  constexpr int waitingCalls = 4;
  if (bind(socket_, generic(*where), sizeof *where) != 0 || ::listen(socket_, waitingCalls) != 0) {
    close(socket_);
    socket_ = -1;
  }
}

bool SingleInstance::askFirstToShow() const {
  const auto where = address(socketPath_);
  const int call = unixSocket();
  if (!where || call < 0) return false;
  const bool answered = connect(call, generic(*where), sizeof *where) == 0;
  close(call);
  return answered;
}

bool SingleInstance::takeShowRequests() {
  bool show = false;
  for (;;) {
    const int call = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    if (call < 0) return show;
    show = true;  // the call itself is the request; nothing is read from anybody
    close(call);
  }
}

}  // namespace tobrin
