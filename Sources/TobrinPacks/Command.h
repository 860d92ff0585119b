/// What every command of the pack workshop shares: where it writes, and how it fails.
#pragma once

#include <ostream>

namespace tobrin {

/// A command prints its result on `out`. It fails by throwing: `CLI::ValidationError` for arguments
/// that make no sense, any other `std::exception` for what went wrong; the text becomes the one
/// line on `err`.
struct CommandStreams {
  std::ostream& out;
  std::ostream& err;
};

}  // namespace tobrin
