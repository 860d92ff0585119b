#include "SystemLog/SystemLog.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <optional>

#include "Base/FileDescriptor.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

/// A log daemon's end.
class LogSocket {
 public:
  explicit LogSocket(const std::filesystem::path& path) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    std::filesystem::remove(path);
    EXPECT_EQ(bind(socket_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  std::string next() {
    std::array<char, 256> text{};
    const auto length = recv(socket_.get(), text.data(), text.size(), 0);
    return length < 0 ? "" : std::string(text.data(), static_cast<std::size_t>(length));
  }

 private:
  FileDescriptor socket_{socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0)};
};

TEST(SystemLog, GetsEachLineAndNeverMakesTheProgramWait) {
  const testing::TempFolder folder;
  const auto path = folder.path() / "log";
  const auto log = systemLog(path);
  log("Tobrin: nobody takes this");
  for (int start = 0; start < 2; ++start) {
    LogSocket daemon(path);
    log("Tobrin: a line");
    EXPECT_EQ(daemon.next(), "<13>tobrin[" + std::to_string(getpid()) + "]: Tobrin: a line");
    for (int i = 0; i < 2000; ++i)
      log("Tobrin: more than a socket holds");
  }
}

}  // namespace
}  // namespace tobrin
