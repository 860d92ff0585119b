#include "Base/FolderLock.h"

#include <sys/file.h>

#include <cerrno>

namespace tobrin {

FolderLock::FolderLock(const std::filesystem::path& folder)
    : folder_(FileDescriptor::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW)) {
  if (!folder_) return;
  isHeld_ = flock(folder_.get(), LOCK_EX | LOCK_NB) == 0;
  isTaken_ = !isHeld_ && errno == EWOULDBLOCK;
}

}  // namespace tobrin
