/// Text files that a command reads. Thread: any.
#pragma once

#include <string>

namespace tobrin {

/// The whole content; "-" reads standard input. Throws `std::runtime_error` naming the file where
/// it cannot be read or is longer than 16 MiB.
std::string readInputFile(const std::string& path);

}  // namespace tobrin
