#include "SystemLog/SystemLog.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "Base/Environment.h"
#include "Base/FileDescriptor.h"

namespace tobrin {
namespace {

class Daemon final {
 public:
  explicit Daemon(const std::filesystem::path& socket)
      : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    address_.sun_family = AF_UNIX;
    socket.native().copy(address_.sun_path, sizeof address_.sun_path - 1);
  }

  /// To the address, not over a connection: a daemon that starts again gets the next line.
  void send(const std::string& line) const {
    std::string text = "<";
    text.append(std::to_string(LOG_MAKEPRI(LOG_USER, LOG_NOTICE))).append(">tobrin[");
    text.append(std::to_string(getpid())).append("]: ").append(line);
    ::sendto(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL,
             reinterpret_cast<const sockaddr*>(&address_), sizeof address_);
  }

 private:
  FileDescriptor socket_;
  sockaddr_un address_{};
};

/// So it is for many programs of a service or a desktop; each line would then be logged twice.
bool standardErrorIsTheJournal() {
  const std::string stream = processVariable("JOURNAL_STREAM");
  struct stat status {};
  if (stream.empty() || fstat(STDERR_FILENO, &status) != 0) return false;
  return stream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

}  // namespace

LogSink systemLog(const std::filesystem::path& socket) {
  const auto daemon =
      standardErrorIsTheJournal() ? nullptr : std::make_shared<const Daemon>(socket);
  return [daemon](const std::string& line) {
    static_cast<void>(std::fprintf(stderr, "%s\n", line.c_str()));
    if (daemon != nullptr) daemon->send(line);
  };
}

}  // namespace tobrin
