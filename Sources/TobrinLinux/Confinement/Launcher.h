/// Starts other programs for one that has given up its own rights. What a confined process starts
/// is confined as well: a file manager without network, a pkexec that cannot ask. So a small copy
/// of the program, split off before, starts them instead, and ends when the program does.
#pragma once

#include <string>
#include <vector>

#include "Motion/FileDescriptor.h"

namespace tobrin {

class Launcher final {
 public:
  /// Splits the helper off. Thread: the only one there is; nothing else may have been started.
  Launcher();

  /// Starts `command`, looked for in PATH, and does not wait for its end; returns why it could not
  /// be started, empty where it was. Never through a shell. With `report`, a descriptor to write
  /// to, what the program writes to standard error goes there, after its end its exit status in a
  /// line of its own, then the end of the file. Thread: one at a time.
  [[nodiscard]] std::string start(const std::vector<std::string>& command, int report = -1) const;

 private:
  FileDescriptor
      helper_;  // a request a message: words that end in zero bytes; answers are an errno
};

}  // namespace tobrin
