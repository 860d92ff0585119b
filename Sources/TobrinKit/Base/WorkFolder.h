/// A folder for one piece of work: removed with this object, or by the next work of the same name
/// where the process was ended before that. Thread: any.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "Base/FolderLock.h"

namespace tobrin {

class WorkFolder final {
 public:
  /// A new, empty folder in `parent`, named `beginning` and a number. Removes first what work of
  /// that name has left there. Throws `std::filesystem::filesystem_error`.
  WorkFolder(const std::filesystem::path& parent, std::string_view beginning);
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  std::optional<FolderLock> lock_;  // of `path_`, so that nobody takes it for a leftover
};

}  // namespace tobrin
