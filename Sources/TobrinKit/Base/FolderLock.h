/// Locks a folder, to show other processes that it is in use. The system releases the lock when
/// this process ends, even by a crash. Thread: any.
#pragma once

#include <filesystem>

#include "Base/FileDescriptor.h"

namespace tobrin {

class FolderLock final {
 public:
  /// Does not wait.
  explicit FolderLock(const std::filesystem::path& folder);

  /// Whether the lock is held here.
  [[nodiscard]] bool isHeld() const { return isHeld_; }
  /// Whether it is held elsewhere.
  [[nodiscard]] bool isTaken() const { return isTaken_; }

 private:
  FileDescriptor folder_;
  bool isHeld_ = false;  // both false where the file system has no locks
  bool isTaken_ = false;
};

}  // namespace tobrin
