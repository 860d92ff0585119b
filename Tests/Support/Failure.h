/// The words of a failure.
#pragma once

#include <exception>
#include <string>

namespace tobrin::testing {

/// What the exception says that `work` throws; "(none)" where it throws none.
template <typename Work>
std::string failureOf(Work work) {
  try {
    work();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "(none)";
}

}  // namespace tobrin::testing
