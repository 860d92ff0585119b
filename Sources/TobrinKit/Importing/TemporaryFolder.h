/// A temporary folder, removed with this object. Thread: any.
#pragma once

#include <filesystem>

#include "Base/WorkFolder.h"

namespace tobrin {

class TemporaryFolder final {
 public:
  /// A new folder that only this user may read. Throws `std::filesystem::filesystem_error`.
  TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return work_.path(); }

 private:
  WorkFolder work_;
};

}  // namespace tobrin
