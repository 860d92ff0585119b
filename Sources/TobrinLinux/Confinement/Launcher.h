/// Starts other programs for one that has given up its own rights. What a confined process starts
/// is confined as well: a file manager without network, a pkexec that cannot ask. So a small copy
/// of the program, split off before, starts them instead, and ends when the program does. It knows
/// a fixed list of commands from before the split and takes no words from the program: code that
/// takes the program over can ask for these commands and for nothing else. Thread: main.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"

namespace tobrin {

/// What another program is started for.
enum class Errand : uint8_t { showPacksFolder, removeKeyRule, relaunch };

class Launcher final {
 public:
  /// A program, looked for in PATH, and its arguments. Never run through a shell.
  using Command = std::vector<std::string>;
  static constexpr std::size_t errandCount = 3;
  using Commands = std::array<Command, errandCount>;  ///< one an errand, in their order

  /// Splits the helper off. No other thread may exist yet.
  explicit Launcher(Commands commands);

  /// Starts the errand's command and does not wait for its end; returns why it could not be
  /// started, empty where it was. With `report`, a descriptor to write to, what the program writes
  /// to standard error goes there, after its end its exit status in a line by itself, then the end
  /// of the file. Not to be called from two threads at once.
  [[nodiscard]] std::string start(Errand errand, int report = -1) const;

 private:
  const Commands commands_;
  FileDescriptor helper_;  // a request is one byte, the errand; an answer is an errno
};

}  // namespace tobrin
