#include "System/RuntimeFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "Base/UserFolders.h"

namespace tobrin {

std::filesystem::path runtimeFolder() {
  auto named = folderNamedBy("XDG_RUNTIME_DIR", processEnvironment);
  if (!named.empty()) return named;
  const std::filesystem::path folder = "/tmp/tobrin-" + std::to_string(getuid());
  constexpr mode_t ownerOnly = 0700;
  mkdir(folder.c_str(), ownerOnly);
  struct stat status {};
  const bool ours = lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                    status.st_uid == getuid() && (status.st_mode & 0077) == 0;
  return ours ? folder : std::filesystem::path();
}

}  // namespace tobrin
