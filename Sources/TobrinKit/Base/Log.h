/// The program's log: one line each, with "Tobrin: " in front. Never key codes. Not for the render
/// thread. Thread: any.
#pragma once

#include <functional>
#include <string>

namespace tobrin {

using LogSink = std::function<void(const std::string& line)>;

/// Writes "Tobrin: " and `text` as one line to the sink, standard error by default.
void logLine(const std::string& text);

/// Replaces where lines go; null restores the default. The sink is called with the log locked and
/// must not log itself.
void setLogSink(LogSink sink);

}  // namespace tobrin
