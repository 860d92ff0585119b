/// Ctrl-C, and being asked to end, as a wish that a command looks at between two steps.
/// Thread: main.
#pragma once

namespace tobrin {

/// From now on SIGINT and SIGTERM no longer end the process but are remembered.
void watchForInterruption();

/// Whether one has come.
[[nodiscard]] bool isInterrupted();

}  // namespace tobrin
