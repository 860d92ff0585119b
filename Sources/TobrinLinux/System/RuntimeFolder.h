/// Where sockets and locks of this login are. Thread: any.
#pragma once

#include <filesystem>

namespace tobrin {

/// $XDG_RUNTIME_DIR, else a private folder below /tmp, made if it is missing; empty where that
/// folder belongs to another user.
std::filesystem::path runtimeFolder();

}  // namespace tobrin
