/// Two folders take each other's names. Thread: any.
#pragma once

#include <filesystem>

namespace tobrin {

/// In one step: there is always a folder under each name. Returns false, with nothing changed,
/// where the file system cannot do it.
bool exchangeFolders(const std::filesystem::path& one, const std::filesystem::path& other);

}  // namespace tobrin
