/// Runs another program and waits for it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tobrin {

/// Runs `program` with `arguments` as they are, never through a shell, with this process's
/// environment and no standard input. Returns its exit status, 128 and the signal's number where a
/// signal ended it. Throws `std::system_error` where it cannot be started. Thread: any.
int runProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments);

}  // namespace tobrin
