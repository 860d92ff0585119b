/// Writes a pack as one file to share: a zip of its folder. Thread: any, one at a time.
#pragma once

#include <filesystem>

#include "Packs/PackManifest.h"

namespace tobrin {

struct PackExport {
  /// The file name extension of such files.
  static constexpr const char* extension = ".tobrinpack";

  /// Checks the pack, writes `file` whole or not at all, and returns the pack's description. Hidden
  /// files and exported packs are left out. Throws `PackError`, `ImportError` where the result
  /// could not be installed, or the file system's own error.
  static PackManifest run(const std::filesystem::path& packFolder,
                          const std::filesystem::path& file);
};

}  // namespace tobrin
