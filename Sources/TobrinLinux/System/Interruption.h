/// Ctrl-C, and requests to end, as a flag that a command checks between two steps. Thread: main.
#pragma once

namespace tobrin {

/// From now on SIGINT and SIGTERM no longer end the process but are remembered.
void watchForInterruption();

/// Whether one of the two has come.
[[nodiscard]] bool isInterrupted();

}  // namespace tobrin
