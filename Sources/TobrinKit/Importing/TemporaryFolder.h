/// A temporary folder, removed with this object. Thread: any.
#pragma once

#include <filesystem>

#include "Base/WorkFolder.h"

namespace tobrin {

/// Where temporary files go: the folder that TMPDIR names, else /tmp. It need not exist.
std::filesystem::path temporaryFiles();

class TemporaryFolder final {
 public:
  /// A new folder that only this user may read. Throws `std::system_error`, which names the
  /// folder that should take it.
  TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return work_.path(); }

 private:
  WorkFolder work_;
};

}  // namespace tobrin
