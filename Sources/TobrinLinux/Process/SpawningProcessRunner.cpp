#include "Process/SpawningProcessRunner.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tobrin {
namespace {

/// Frees what posix_spawn's description of the child's files holds.
class FileActions {
 public:
  FileActions() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
      posix_spawn_file_actions_addopen(&actions_, output, "/dev/null", O_WRONLY, 0);
  }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

int SpawningProcessRunner::run(const std::filesystem::path& program,
                               const std::vector<std::string>& arguments) const {
  std::vector<std::string> words = {program.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);

  const FileActions files;
  pid_t child = 0;
  const int error =
      posix_spawn(&child, program.c_str(), files.get(), nullptr, pointers.data(), environ);
  if (error != 0) throw std::system_error(error, std::generic_category(), program.string());
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), program.string());
  }
  constexpr int signalBase = 128;
  return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

}  // namespace tobrin
