/// What a user without privileges may do. Thread: main.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace tobrin::testing {

/// Starts `body` in a process of the user "nobody", and of one group if that is given.
inline pid_t startAsNobody(const std::function<int()>& body, gid_t group = 65534) {
  const pid_t child = fork();
  if (child != 0) return child;
  const bool dropped = setgroups(1, &group) == 0 && setgid(65534) == 0 && setuid(65534) == 0;
  _exit(dropped ? body() : 99);
}

/// Waits for its end; what `body` returned.
inline int exitStatus(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 98;
}

}  // namespace tobrin::testing
