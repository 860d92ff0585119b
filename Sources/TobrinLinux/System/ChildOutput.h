/// What a short-lived program prints. Thread: any.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "System/WakeEvent.h"

namespace tobrin {

/// Runs a program, looked for in PATH, and returns its standard output. Nothing where it cannot be
/// run or fails. Waits for its end, but ends it, and returns nothing, at `deadline` and when `stop`
/// is raised.
std::optional<std::string> childOutput(const std::vector<std::string>& command,
                                       std::chrono::steady_clock::time_point deadline,
                                       const WakeEvent& stop);

}  // namespace tobrin
