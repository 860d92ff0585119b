#include "Confinement/Launcher.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

#include "System/Spawn.h"

namespace tobrin {
namespace {

/// An errand's number and, where one comes along, a descriptor. Room for exactly one.
struct Message {
  uint8_t errand = 0;
  iovec piece{&errand, sizeof errand};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  msghdr head{.msg_name = nullptr,
              .msg_namelen = 0,
              .msg_iov = &piece,
              .msg_iovlen = 1,
              .msg_control = control.data(),
              .msg_controllen = control.size(),
              .msg_flags = 0};

  void attach(int descriptor) {
    cmsghdr* const part = CMSG_FIRSTHDR(&head);
    *part = {
        .cmsg_len = CMSG_LEN(sizeof descriptor), .cmsg_level = SOL_SOCKET, .cmsg_type = SCM_RIGHTS};
    std::memcpy(CMSG_DATA(part), &descriptor, sizeof descriptor);
  }
  [[nodiscard]] int attached() {
    int descriptor = -1;
    const cmsghdr* const part = CMSG_FIRSTHDR(&head);
    if (part != nullptr && part->cmsg_type == SCM_RIGHTS)
      std::memcpy(&descriptor, CMSG_DATA(part), sizeof descriptor);
    return descriptor;
  }
};

constexpr int toProgram = 3;  // the helper's only descriptor but the standard ones

/// `report`, unless it is negative, becomes the program's standard error.
Spawned startDetached(const Launcher::Command& command, int report = SpawnOptions::inherited) {
  return spawn(command, {.errors = report, .detached = true});
}

void answer(int error) {
  send(toProgram, &error, sizeof error, MSG_NOSIGNAL);
}

/// In a process made for it: starts the program, waits for its end and reports how it ended.
[[noreturn]] void watchOver(const Launcher::Command& command, int report) {
  static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
  const Spawned started = startDetached(command, report);
  answer(started.error);
  if (started.error == 0) dprintf(report, "\n%d\n", waitForEnd(started.child));
  _exit(0);
}

void serveOne(const Launcher::Command& command, const FileDescriptor& report) {
  if (!report) return answer(startDetached(command).error);
  const pid_t child = fork();
  if (child == 0) watchOver(command, report.get());
  if (child < 0) answer(errno);
}

/// Takes one request, which code that has taken the program over may have sent.
void takeRequest(const Launcher::Commands& commands) {
  Message request;
  const ssize_t length =
      retried([&] { return recvmsg(toProgram, &request.head, MSG_CMSG_CLOEXEC); });
  if (length <= 0) _exit(0);
  const FileDescriptor report(request.attached());
  const bool isWhole = (request.head.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
  if (isWhole && request.errand < commands.size())
    return serveOne(commands[request.errand], report);
  answer(EINVAL);
}

/// What the helper does until the program's end of the socket is closed, also by a crash.
[[noreturn]] void serve(int program, const Launcher::Commands& commands) {
  if (dup2(program, toProgram) < 0) _exit(1);
  close_range(toProgram + 1, ~0U, 0);  // the program's lock among them
  prctl(PR_SET_NAME, "Tobrin.Launcher");
  // It need not wait for the programs it starts, and it ends with the program, not before.
  for (const int each : {SIGCHLD, SIGINT, SIGTERM, SIGHUP})
    static_cast<void>(std::signal(each, SIG_IGN));
  for (;;)
    takeRequest(commands);
}

bool sendRequest(int helper, Errand errand, int report) {
  Message request;
  request.errand = static_cast<uint8_t>(errand);
  if (report >= 0)
    request.attach(report);
  else
    request.head.msg_controllen = 0;
  return sendmsg(helper, &request.head, MSG_NOSIGNAL) > 0;
}

}  // namespace

Launcher::Launcher(Commands commands) : commands_(std::move(commands)) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return;
  helper_.reset(ends[0]);
  const FileDescriptor helpersEnd(ends[1]);
  const pid_t helper = fork();
  if (helper == 0) serve(helpersEnd.get(), commands_);
  if (helper < 0) helper_.reset();
}

std::string Launcher::start(Errand errand, int report) const {
  int error = EPIPE;
  if (helper_ && sendRequest(helper_.get(), errand, report)) {
    (void)retried([&] { return recv(helper_.get(), &error, sizeof error, 0); });
  }
  if (error == 0) return {};
  const auto number = static_cast<std::size_t>(errand);
  const bool isNamed = number < commands_.size() && !commands_[number].empty();
  const std::string name = isNamed ? commands_[number].front() : "no such command";
  return name + ": " + std::generic_category().message(error);
}

}  // namespace tobrin
