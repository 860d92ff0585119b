/// What a short-lived program prints.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace tobrin {

/// Runs a program found on the path and returns its standard output; empty where it cannot be run
/// or has not ended in time (it is then ended). Thread: any; waits.
std::string childOutput(const std::vector<std::string>& command, std::chrono::milliseconds limit);

}  // namespace tobrin
