/// Replaces a file whole or not at all: readers see the old content or the new one, and a failure
/// leaves the old file as it was. Thread: any.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

namespace tobrin {

/// Waits until a closed file, or a folder's entries, survive a power cut. May throw.
using DiskFlush = std::function<void(const std::filesystem::path& fileOrFolder)>;

/// Writes `content` to a temporary file in the target's folder, then renames it. An existing file
/// keeps its permissions; a symbolic link is followed; anything but a regular file, such as a
/// device, is refused. `flush` makes the content survive a power cut; files that can be made again
/// need none. Throws `std::filesystem::filesystem_error` that names the target.
void writeFileAtomically(const std::filesystem::path& target, std::string_view content,
                         const DiskFlush& flush = {});

}  // namespace tobrin
