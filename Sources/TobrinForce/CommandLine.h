/// The command line of tobrin-force.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tobrin {

struct ForceStreams {
  std::ostream& out;
  std::ostream& err;
};

/// Runs one command; `arguments` without the program's name. Returns the exit status: 0 done,
/// 1 failed with one line on the error stream, 2 wrong usage.
int runForceTools(const std::vector<std::string>& arguments, const ForceStreams& streams);

}  // namespace tobrin
