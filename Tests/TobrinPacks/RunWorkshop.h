/// Runs a command of the pack workshop inside the test program.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "CommandLine.h"

namespace tobrin::testing {

struct Outcome {
  int status = 0;
  std::string out;
  std::string err;
};

inline Outcome run(const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = runPackWorkshop(arguments, {out, err});
  return {status, out.str(), err.str()};
}

}  // namespace tobrin::testing
