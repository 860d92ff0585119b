/// Runs another program and waits for it: pack building's way to the system. Thread: any.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tobrin {

class ProcessRunner {
 public:
  virtual ~ProcessRunner() = default;

  /// Runs `program` with `arguments` as they are, never through a shell, with this process's
  /// environment, no standard input, and its output thrown away. Returns its exit status, or 128
  /// plus the signal's number where a signal ended it. Throws `std::system_error` where it cannot
  /// be started. Several may run at once.
  [[nodiscard]] virtual int run(const std::filesystem::path& program,
                                const std::vector<std::string>& arguments) const = 0;
};

}  // namespace tobrin
