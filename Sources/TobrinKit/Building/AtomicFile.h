/// Replaces a file whole or not at all: readers see the old content or the new one, and a failure
/// leaves the old file as it was. Thread: any.
#pragma once

#include <filesystem>
#include <string_view>

namespace tobrin {

/// What a successful return promises beyond the replacement itself.
enum class Durability {
  replaced,  ///< nothing; for files that can be made again
  onDisk,    ///< the content survives a power cut; waits for the disk
};

/// Writes `content` aside in the target's folder, then renames it into place. An existing file
/// keeps its permissions; a symbolic link is followed; what is no regular file, such as a device,
/// is not replaced. Throws `std::filesystem::filesystem_error` that names the target.
void writeFileAtomically(const std::filesystem::path& target, std::string_view content,
                         Durability durability = Durability::onDisk);

}  // namespace tobrin
