/// Waits until what was written is on the disk. Thread: any.
#pragma once

#include <filesystem>

namespace tobrin {

/// Returns once the content of a file, or the entries of a folder, survive a power cut. A file
/// system that cannot flush folders is no error. Throws `std::filesystem::filesystem_error` that
/// names the file.
void flushToDisk(const std::filesystem::path& fileOrFolder);

}  // namespace tobrin
