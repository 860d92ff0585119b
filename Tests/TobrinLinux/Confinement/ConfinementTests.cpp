// What is given up cannot be had back, so each test gives it up in a child process.
#include "Confinement/Confinement.h"

#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <latch>
#include <string_view>
#include <thread>

#include "Confinement/Launcher.h"
#include "Support/InChild.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
using testing::inChild;

bool refused(long domain, int protocol = 0) {
  return syscall(SYS_socket, domain, SOCK_DGRAM, protocol) < 0 && errno == EACCES;
}

// The number of the first promise broken, zero for none.
int brokenPromise() {
  int number = 0;
  for (const long domain : {AF_INET, AF_INET6, AF_PACKET, AF_BLUETOOTH, AF_VSOCK}) {
    ++number;
    if (!refused(domain) || !refused(domain | 1L << 32)) return number;
  }
  if (!refused(AF_NETLINK, NETLINK_ROUTE)) return 10;
  if (syscall(SYS_io_uring_setup, 1, nullptr) >= 0 || errno != EACCES) return 11;
  if (refused(AF_UNIX) || refused(AF_NETLINK, NETLINK_KOBJECT_UEVENT)) return 12;
  rlimit core{};
  getrlimit(RLIMIT_CORE, &core);
  return core.rlim_max <= 1 ? 0 : 13;
}

TEST(Confinement, RefusesTheNetworkToEveryThread) {
  EXPECT_FALSE(refused(AF_INET));
  EXPECT_EQ(inChild([] {
              keepNoCore();
              takeNoPrivileges();
              std::latch confined(1);
              int broken = -1;
              std::thread before([&] {
                confined.wait();
                broken = brokenPromise();
              });
              refuseNetwork();
              confined.count_down();
              before.join();
              return broken != 0 ? broken : brokenPromise();
            }),
            0);
}

TEST(Confinement, WhatTheLauncherStartsIsFree) {
  const testing::TempFolder folder;
  const auto report = folder.path() / "report";
  const auto shell = [&](const std::string& words) {
    return std::vector<std::string>{"sh", "-c", words, "sh", report.string()};
  };
  EXPECT_EQ(inChild([&] {
              const Launcher launcher({Launcher::Command{"/nonexistent/program"},
                                       shell("echo denied >&2; exit 7"),
                                       shell("grep -E 'NoNewPrivs|Seccomp:' /proc/self/status "
                                             ">$1.new; mv $1.new $1")});
              takeNoPrivileges();
              refuseNetwork();
              if (launcher.start(Errand::showPacksFolder).empty()) return 1;
              if (!launcher.start(Errand::relaunch).empty()) return 2;
              std::array<int, 2> ends{};
              if (pipe(ends.data()) != 0) return 3;
              if (!launcher.start(Errand::removeKeyRule, ends[1]).empty()) return 4;
              close(ends[1]);
              std::string told;
              for (char piece = 0; read(ends[0], &piece, 1) == 1;)
                told += piece;
              if (told != "denied\n\n7\n") return 5;
              for (int i = 0; i < 500 && !std::filesystem::exists(report); ++i)
                std::this_thread::sleep_for(20ms);
              return 0;
            }),
            0);
  EXPECT_EQ(testing::contentOf(report), "NoNewPrivs:\t0\nSeccomp:\t0\n");
}

/// The launcher's socket, as code that has taken the program over would look for it.
int socketOfTheLauncher() {
  for (int each = 3; each < 64; ++each) {
    int kind = 0;
    socklen_t size = sizeof kind;
    if (getsockopt(each, SOL_SOCKET, SO_TYPE, &kind, &size) == 0 && kind == SOCK_SEQPACKET)
      return each;
  }
  return -1;
}

TEST(Confinement, TheLauncherStartsNothingButItsOwnCommands) {
  EXPECT_EQ(inChild([] {
              const Launcher launcher({Launcher::Command{"true"}, {}, {}});
              const int socket = socketOfTheLauncher();
              const auto answerTo = [&](std::string_view request) {
                int error = -1;
                if (send(socket, request.data(), request.size(), MSG_NOSIGNAL) < 0) return -1;
                return recv(socket, &error, sizeof error, 0) == sizeof error ? error : -2;
              };
              if (answerTo({"\0", 1}) != 0) return 1;
              if (answerTo({"\0true\0", 6}) != EINVAL) return 2;
              if (answerTo("\3") != EINVAL || answerTo("\377") != EINVAL) return 3;
              if (answerTo("\1") != ENOENT) return 4;
              return launcher.start(static_cast<Errand>(9)).empty() ? 5 : 0;
            }),
            0);
}

}  // namespace
}  // namespace tobrin
