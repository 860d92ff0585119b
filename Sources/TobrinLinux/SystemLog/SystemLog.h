/// The program's diagnostics, on standard error and in the system's log (journal or syslog).
/// Thread: any.
#pragma once

#include <filesystem>

#include "Base/Log.h"

namespace tobrin {

/// For `setLogSink`. It sends to the log daemon's socket and never waits: a daemon that hangs or
/// is missing costs lines, not keys.
[[nodiscard]] LogSink systemLog(const std::filesystem::path& socket = "/dev/log");

}  // namespace tobrin
