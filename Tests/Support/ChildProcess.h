/// A program that a test runs beside itself, ended with the object.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tobrin::testing {

class ChildProcess final {
 public:
  /// Looks the program up as a shell does. Its output goes to the file `output`, or nowhere.
  explicit ChildProcess(const std::vector<std::string>& command, const std::string& output = {}) {
    std::vector<char*> arguments;
    for (const std::string& word : command) {
      arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    process_ = fork();
    if (process_ < 0) throw std::runtime_error("no process");
    if (process_ != 0) return;
    const int silence = open("/dev/null", O_RDWR);
    const int out =
        output.empty() ? silence : open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(silence, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(silence, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  ~ChildProcess() { end(); }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t id() const { return process_; }

  /// Waits for the program to end by itself; its exit status.
  int wait() {
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

  void send(int signal) { kill(process_, signal); }

  void end() {
    if (process_ < 0) return;
    kill(process_, SIGTERM);
    wait();
  }

 private:
  pid_t process_ = -1;
};

}  // namespace tobrin::testing
