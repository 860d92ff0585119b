/// The user's trash, by the rules that desktops share: what lies in it, file managers list and
/// bring back. Thread: any, one at a time.
#pragma once

#include <filesystem>
#include <functional>

#include "Base/Environment.h"

namespace tobrin {

/// Moves a file or folder, named by its full path, to the trash. What it returns brings it back,
/// and throws where that fails, as where something else has its place. Throws
/// `std::filesystem::filesystem_error`, as where it lies on another disk than the trash; nothing
/// has changed then.
[[nodiscard]] std::function<void()> moveToTrash(
    const std::filesystem::path& path, const Environment& environment = processEnvironment);

}  // namespace tobrin
