/// A temporary folder, removed with this object. Thread: any.
#pragma once

#include <filesystem>

namespace tobrin {

class TemporaryFolder final {
 public:
  /// A new folder that only this user may read. Throws `std::filesystem::filesystem_error`.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tobrin
