/// Runs a command of the pack workshop inside the test program.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Support/Session.h"

namespace tobrin::testing {

inline Outcome run(const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = runPackWorkshop(arguments, {out, err});
  return {status, out.str(), err.str()};
}

}  // namespace tobrin::testing
