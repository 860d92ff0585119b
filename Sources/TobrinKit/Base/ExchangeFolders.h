/// Two folders take each other's names.
#pragma once

#include <filesystem>

namespace tobrin {

/// In one step: whoever looks finds one or the other under each name, never none. Returns false,
/// with nothing changed, where the file system cannot do it. Thread: any.
bool exchangeFolders(const std::filesystem::path& one, const std::filesystem::path& other);

}  // namespace tobrin
