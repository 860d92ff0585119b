#include "Shortcuts/ChildOutput.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace tobrin {
namespace {

pid_t spawn(const std::vector<std::string>& command, int output) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command)
    arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = -1;
  const int failure =
      posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return failure == 0 ? child : -1;
}

/// Whether the writer has closed its end by the deadline.
bool readAll(int input, std::chrono::steady_clock::time_point deadline, const WakeEvent& stop,
             std::string& text) {
  std::array<char, 16384> piece;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    std::array<pollfd, 2> waits = {{{input, POLLIN, 0}, {stop.fd(), POLLIN, 0}}};
    if (left.count() <= 0 || poll(waits.data(), waits.size(), static_cast<int>(left.count())) == 0)
      return false;
    if (waits[1].revents != 0) return false;
    if (waits[0].revents == 0) continue;  // interrupted
    const ssize_t length = read(input, piece.data(), piece.size());
    if (length == 0) return true;
    if (length > 0) text.append(piece.data(), static_cast<std::size_t>(length));
    if (length < 0 && errno != EINTR) return false;
  }
}

/// Whether the child, which is waited for, did what it should.
bool succeeded(pid_t child) {
  int status = -1;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return status == 0;
}

}  // namespace

std::optional<std::string> childOutput(const std::vector<std::string>& command,
                                       std::chrono::steady_clock::time_point deadline,
                                       const WakeEvent& stop) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
  const pid_t child = spawn(command, ends[1]);
  close(ends[1]);
  std::string text;
  const bool whole = child > 0 && readAll(ends[0], deadline, stop, text);
  close(ends[0]);
  if (child <= 0) return std::nullopt;
  if (!whole) kill(child, SIGKILL);
  return succeeded(child) && whole ? std::optional(std::move(text)) : std::nullopt;
}

}  // namespace tobrin
