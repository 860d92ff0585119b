#include "System/Spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cassert>
#include <cerrno>
#include <csignal>

namespace tobrin {
namespace {

/// Words in the form in which the system takes them; they point into `words`.
std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

class Streams final {
 public:
  explicit Streams(const SpawnOptions& options) {
    posix_spawn_file_actions_init(&actions_);
    connect(STDIN_FILENO, options.input, O_RDONLY);
    connect(STDOUT_FILENO, options.output, O_WRONLY);
    connect(STDERR_FILENO, options.errors, O_WRONLY);
  }
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  void connect(int stream, int source, int mode) {
    assert(source >= SpawnOptions::nowhere);
    if (source == SpawnOptions::nowhere)
      posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", mode, 0);
    else if (source >= 0)
      posix_spawn_file_actions_adddup2(&actions_, source, stream);
  }

  posix_spawn_file_actions_t actions_{};
};

class Attributes final {
 public:
  explicit Attributes(const SpawnOptions& options) {
    posix_spawnattr_init(&attributes_);
    if (!options.detached) return;
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  ~Attributes() { posix_spawnattr_destroy(&attributes_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

}  // namespace

Spawned spawn(std::vector<std::string> command, const SpawnOptions& options) {
  if (command.empty()) return {.error = ENOENT};
  const std::vector<char*> words = pointersTo(command);
  std::vector<std::string> variables = options.environment.value_or(std::vector<std::string>());
  const std::vector<char*> ownEnvironment = pointersTo(variables);
  char* const* const given = options.environment ? ownEnvironment.data() : environ;
  Spawned result;
  result.error = posix_spawnp(&result.child, words[0], Streams(options).get(),
                              Attributes(options).get(), words.data(), given);
  if (result.error != 0) result.child = -1;
  return result;
}

int waitForEnd(pid_t child) {
  assert(child > 0);  // other numbers stand for any child, or for a group
  int status = 0;
  if (retried([&] { return waitpid(child, &status, 0); }) < 0) return -1;
  constexpr int signalBase = 128;
  return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

std::optional<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
  return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

}  // namespace tobrin
