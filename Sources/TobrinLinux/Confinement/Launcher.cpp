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
#include <string_view>
#include <system_error>

namespace tobrin {
namespace {

constexpr std::size_t longestRequest = 16384;

/// The words of a request in the form that a program takes them.
std::vector<char*> argumentsIn(char* request, std::size_t length) {
  std::vector<char*> arguments;
  for (char* word = request; word < request + length; word += std::strlen(word) + 1)
    arguments.push_back(word);
  arguments.push_back(nullptr);
  return arguments;
}

/// In a session of its own, with the signals as a program expects to find them; `errors`, where it
/// is one, becomes its standard error.
int spawn(const std::vector<char*>& arguments, int errors, pid_t& child) {
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

/// A message and, where one comes along, a descriptor. Room for exactly one.
struct Message {
  std::array<char, longestRequest> text;
  iovec piece{text.data(), text.size()};
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

/// In a process of its own: starts the program, waits for its end and tells how it ended.
[[noreturn]] void watchOver(const std::vector<char*>& arguments, int report) {
  static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
  pid_t child = -1;
  const int error = spawn(arguments, report, child);
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

void serveOne(const std::vector<char*>& arguments, int report) {
  pid_t child = -1;
  if (report < 0) return answer(spawn(arguments, report, child));
  child = fork();
  if (child == 0) watchOver(arguments, report);
  if (child < 0) answer(errno);
  close(report);
}

/// The helper's life: until the program's end of the socket is closed, whatever closed it.
[[noreturn]] void serve(int program) {
  if (dup2(program, toProgram) < 0) _exit(1);
  close_range(toProgram + 1, ~0U, 0);  // the program's lock among them
  prctl(PR_SET_NAME, "Tobrin.Launcher");
  // Those it starts are nobody's to wait for, and it ends with the program, not before.
  for (const int each : {SIGCHLD, SIGINT, SIGTERM, SIGHUP})
    static_cast<void>(std::signal(each, SIG_IGN));
  for (;;) {
    Message request;
    const ssize_t length = recvmsg(toProgram, &request.head, MSG_CMSG_CLOEXEC);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) _exit(0);
    serveOne(argumentsIn(request.text.data(), static_cast<std::size_t>(length)),
             request.attached());
  }
}

bool sendRequest(int helper, std::string& words, int report) {
  Message request;
  request.piece = {words.data(), words.size()};
  if (report >= 0)
    request.attach(report);
  else
    request.head.msg_controllen = 0;
  return sendmsg(helper, &request.head, MSG_NOSIGNAL) > 0;
}

}  // namespace

Launcher::Launcher() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return;
  helper_.reset(ends[0]);
  const pid_t helper = fork();
  if (helper == 0) serve(ends[1]);
  close(ends[1]);
  if (helper < 0) helper_.reset();
}

std::string Launcher::start(const std::vector<std::string>& command, int report) const {
  std::string request;
  for (const std::string& word : command)
    request.append(word.c_str(), word.size() + 1);
  int error = request.size() > longestRequest ? E2BIG : EPIPE;
  if (helper_ && error == EPIPE && sendRequest(helper_.get(), request, report)) {
    ssize_t taken = 0;
    do {
      taken = recv(helper_.get(), &error, sizeof error, 0);
    } while (taken < 0 && errno == EINTR);
  }
  return error == 0 ? "" : command.front() + ": " + std::generic_category().message(error);
}

}  // namespace tobrin
