/// Starts other programs and waits for their end: the one way in which this project does it.
/// Thread: any.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"

namespace tobrin {

/// What a program gets in addition to its words.
struct SpawnOptions {
  static constexpr int inherited = -1;  ///< the stream of this process
  static constexpr int nowhere = -2;    ///< empty to read, and swallows what is written

  /// Its standard streams: a descriptor of this process, which stays open here, or one of the
  /// values above.
  int input = inherited;
  int output = inherited;
  int errors = inherited;

  /// In a new session, with no signal held back, ignored or handled, whatever this process does.
  bool detached = false;

  /// Its whole environment ("NAME=value"), in place of this process's.
  std::optional<std::vector<std::string>> environment = std::nullopt;
};

struct Spawned {
  pid_t child = -1;
  int error = 0;  ///< an errno; then there is no child
};

/// Starts a program without a shell. `command` holds the program, looked for in PATH where its name
/// has no '/', and its arguments.
[[nodiscard]] Spawned spawn(std::vector<std::string> command, const SpawnOptions& options);

/// Waits for a child's end: its exit status, or 128 and the number of the signal that ended it; -1
/// with `errno` where there is no such child.
[[nodiscard]] int waitForEnd(pid_t child);

/// For what a child prints. Neither end is inherited by programs that are started.
struct Pipe {
  FileDescriptor reading;
  FileDescriptor writing;
};

/// Nothing where there are no descriptors left.
[[nodiscard]] std::optional<Pipe> makePipe();

}  // namespace tobrin
