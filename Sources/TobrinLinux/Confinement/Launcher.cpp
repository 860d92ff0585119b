#include "Confinement/Launcher.h"

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

namespace tobrin {
namespace {

/// A command in the form that a program takes it.
std::vector<char*> argumentsOf(Launcher::Command& command) {
  std::vector<char*> arguments;
  for (std::string& word : command)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return arguments;
}

/// In a new session, with the signals as a program expects to find them; `errors`, unless it is
/// negative, becomes its standard error.
int spawn(Launcher::Command& command, int errors, pid_t& child) {
  if (command.empty()) return ENOENT;
  const std::vector<char*> arguments = argumentsOf(command);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigfillset(&signals);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (errors >= 0) posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  const int error =
      posix_spawnp(&child, arguments[0], &actions, &attributes, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  return error;
}

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

constexpr int toProgram = 3;  // the helper's one descriptor beside the standard ones

void answer(int error) {
  send(toProgram, &error, sizeof error, MSG_NOSIGNAL);
}

/// In a process made for it: starts the program, waits for its end and reports how it ended.
[[noreturn]] void watchOver(Launcher::Command& command, int report) {
  static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
  pid_t child = -1;
  const int error = spawn(command, report, child);
  answer(error);
  if (error != 0) _exit(0);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  constexpr int signalBase = 128;
  dprintf(report, "\n%d\n",
          WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status));
  _exit(0);
}

void serveOne(Launcher::Command& command, int report) {
  pid_t child = -1;
  if (report < 0) return answer(spawn(command, report, child));
  child = fork();
  if (child == 0) watchOver(command, report);
  if (child < 0) answer(errno);
  close(report);
}

/// Takes one request, which code that has taken the program over may have sent.
void takeRequest(Launcher::Commands& commands) {
  Message request;
  const ssize_t length = recvmsg(toProgram, &request.head, MSG_CMSG_CLOEXEC);
  if (length < 0 && errno == EINTR) return;
  if (length <= 0) _exit(0);
  const int report = request.attached();
  const bool isWhole = (request.head.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
  if (isWhole && request.errand < commands.size())
    return serveOne(commands[request.errand], report);
  if (report >= 0) close(report);
  answer(EINVAL);
}

/// The helper's life: until the program's end of the socket is closed, whatever closed it.
[[noreturn]] void serve(int program, Launcher::Commands commands) {
  if (dup2(program, toProgram) < 0) _exit(1);
  close_range(toProgram + 1, ~0U, 0);  // the program's lock among them
  prctl(PR_SET_NAME, "Tobrin.Launcher");
  // Nobody waits for those it starts, and it ends with the program, not before.
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
  const pid_t helper = fork();
  if (helper == 0) serve(ends[1], commands_);
  close(ends[1]);
  if (helper < 0) helper_.reset();
}

std::string Launcher::start(Errand errand, int report) const {
  int error = EPIPE;
  if (helper_ && sendRequest(helper_.get(), errand, report)) {
    ssize_t taken = 0;
    do {
      taken = recv(helper_.get(), &error, sizeof error, 0);
    } while (taken < 0 && errno == EINTR);
  }
  if (error == 0) return {};
  const auto number = static_cast<std::size_t>(errand);
  const bool isNamed = number < commands_.size() && !commands_[number].empty();
  const std::string name = isNamed ? commands_[number].front() : "no such command";
  return name + ": " + std::generic_category().message(error);
}

}  // namespace tobrin
