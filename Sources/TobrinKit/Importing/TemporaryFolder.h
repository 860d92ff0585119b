/// A folder for the time of one piece of work, gone with it. Thread: any.
#pragma once

#include <filesystem>

namespace tobrin {

class TemporaryFolder final {
 public:
  /// A new folder that only its user may look into. Throws `std::filesystem::filesystem_error`.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tobrin
