/// Unpacks archives (zip, tar, 7z) that may come from anybody. Thread: any, one at a time: the
/// calling thread's language settings change while it works.
#pragma once

#include <filesystem>

#include "Importing/ImportNotes.h"
#include "Importing/SourceFiles.h"

namespace tobrin {

/// Unpacks the regular files of an archive into `folder`, under numbers in place of their names, so
/// that no name can lead anywhere. Links and names that leave the archive are left out. Throws
/// `ImportError` where it is no archive, is damaged, or holds more than `SourceFiles::mostFiles` or
/// `mostBytes`.
SourceFiles unpack(const std::filesystem::path& archive, const std::filesystem::path& folder,
                   ImportNotes& notes);

}  // namespace tobrin
