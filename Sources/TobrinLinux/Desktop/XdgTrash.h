/// The user's trash, by the rules that desktops share: what lies in it, file managers list and
/// bring back. Thread: any, one at a time.
#pragma once

#include <filesystem>
#include <functional>

#include "Base/Environment.h"

namespace tobrin {

/// Moves a file or folder, named by its full path, to the trash. Returns a function that brings it
/// back, and that throws where it cannot, for example because something else has its place now.
/// Throws `std::filesystem::filesystem_error` with nothing changed, for example where it lies on
/// another disk than the trash.
[[nodiscard]] std::function<void()> moveToTrash(
    const std::filesystem::path& path, const Environment& environment = processEnvironment);

}  // namespace tobrin
