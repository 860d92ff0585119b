/// What a short-lived program prints.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "Threads/WakeEvent.h"

namespace tobrin {

/// Runs a program found on the path and returns its standard output. Nothing where it cannot be
/// run, fails, or has not ended by `deadline` or when `stop` is raised (it is then ended).
/// Thread: any; waits.
std::optional<std::string> childOutput(const std::vector<std::string>& command,
                                       std::chrono::steady_clock::time_point deadline,
                                       const WakeEvent& stop);

}  // namespace tobrin
