/// Shows other processes that a folder is in use. The system ends that with this process, however
/// it ends. Thread: any.
#pragma once

#include <filesystem>

#include "Base/FileDescriptor.h"

namespace tobrin {

class FolderLock final {
 public:
  /// Does not wait.
  explicit FolderLock(const std::filesystem::path& folder);

  /// Whether it is in use here from now on, and was not elsewhere.
  [[nodiscard]] bool isHeld() const { return isHeld_; }
  /// Whether it is in use elsewhere.
  [[nodiscard]] bool isTaken() const { return isTaken_; }

 private:
  FileDescriptor folder_;
  bool isHeld_ = false;  // neither, where the file system knows no locks
  bool isTaken_ = false;
};

}  // namespace tobrin
