/// Who calls: which user, with which program. Thread: main.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

struct sd_bus_message;

namespace tobrin {

/// The user of a caller that runs this executable; nothing for every other program. The kernel
/// tells which file a process runs, and nothing of what else it was made to load: a program of the
/// same user that traces Tobrin, or starts it with other libraries loaded, is taken for Tobrin.
std::optional<uid_t> userOfProgram(sd_bus_message* call, const std::string& program);

}  // namespace tobrin
