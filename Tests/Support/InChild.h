/// Runs work that changes or ends its process in a child process.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace tobrin::testing {

/// Runs `work` in a child process; its exit status, or minus the signal that ended it.
template <typename Work>
int inChild(Work work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace tobrin::testing
