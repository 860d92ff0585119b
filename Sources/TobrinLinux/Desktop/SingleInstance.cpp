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

FileDescriptor unixSocket() {
  return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

}  // namespace

SingleInstance::SingleInstance(const std::filesystem::path& folder) {
  if (folder.empty()) return;
  socketPath_ = folder / "tobrin.socket";
  constexpr mode_t ownerOnly = 0600;
  lock_ = FileDescriptor::open((folder / "tobrin.lock").c_str(), O_RDWR | O_CREAT, ownerOnly);
  if (!lock_) return;
  isFirst_ = flock(lock_.get(), LOCK_EX | LOCK_NB) == 0;
  if (isFirst_) listen();
}

SingleInstance::~SingleInstance() {
  if (socket_) unlink(socketPath_.c_str());  // while the lock is still ours
}

void SingleInstance::listen() {
  const auto where = address(socketPath_);
  if (!where) return;
  socket_ = unixSocket();
  if (!socket_) return;
  unlink(socketPath_.c_str());  // left by an instance that crashed: the lock says it is gone
  constexpr int waitingCalls = 4;
  if (bind(socket_.get(), generic(*where), sizeof *where) != 0 ||
      ::listen(socket_.get(), waitingCalls) != 0)
    socket_.reset();
}

bool SingleInstance::askFirstToShow() const {
  const auto where = address(socketPath_);
  const FileDescriptor call = unixSocket();
  return where && call && connect(call.get(), generic(*where), sizeof *where) == 0;
}

bool SingleInstance::takeShowRequests() {
  bool show = false;
  // A call itself is the request; nothing is read from the caller.
  while (FileDescriptor(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC)))
    show = true;
  return show;
}

}  // namespace tobrin
