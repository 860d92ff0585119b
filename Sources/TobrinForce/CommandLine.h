/// The command line of tobrin-force. Thread: main.
#pragma once

#include <string>
#include <vector>

#include "Commands.h"

namespace tobrin {

/// Runs one command; `arguments` without the program's name. Returns the exit status: 0 done,
/// 1 failed with one line on the error stream, 2 wrong usage.
int runForceTools(const std::vector<std::string>& arguments, const ForceStreams& streams);

}  // namespace tobrin
