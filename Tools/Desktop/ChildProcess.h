/// A program that runs next to this one and ends with the object. Thread: any.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "TestPaths.h"

namespace tobrin::testing {

class ChildProcess final {
 public:
  enum class Output { none, announced };

  /// Looks the program up as a shell does. Where its output is `announced`, `firstLine` gives its
  /// beginning; otherwise it goes nowhere, as its errors always do.
  explicit ChildProcess(const std::vector<std::string>& command, Output output = Output::none) {
    std::vector<char*> arguments;
    for (const std::string& word : command)
      arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    if (pipe2(ends_, O_CLOEXEC) != 0 || (process_ = fork()) < 0)
      throw std::runtime_error("no process");
    if (process_ != 0) return;
    const int silence = open("/dev/null", O_RDWR);
    dup2(silence, STDIN_FILENO);
    dup2(output == Output::none ? silence : ends_[1], STDOUT_FILENO);
    dup2(silence, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  ~ChildProcess() {
    end();
    close(ends_[0]);
    close(ends_[1]);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t id() const { return process_; }

  /// Waits for the first line of the output; throws where the program ends without one. Call once.
  std::string firstLine() {
    close(std::exchange(ends_[1], -1));
    std::string line;
    for (char next = 0; read(ends_[0], &next, 1) == 1 && next != '\n';)
      line += next;
    if (line.empty()) throw std::runtime_error("a program did not start");
    return line;
  }

  /// Waits for the program to end by itself; its exit status.
  int wait() {
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

  void end() {
    if (process_ < 0) return;
    kill(process_, SIGTERM);
    wait();
  }

 private:
  int ends_[2] = {-1, -1};
  pid_t process_ = -1;
};

/// Disturbs the services of the private desktop session around this program: a command of
/// `desktop-ctl`. Returns when it is done.
inline void tellDesktop(const std::string& command) {
  if (ChildProcess({TOBRIN_DESKTOP_CTL, command}).wait() != 0) throw std::runtime_error(command);
}

}  // namespace tobrin::testing
