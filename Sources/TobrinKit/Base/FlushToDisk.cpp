#include "Base/FlushToDisk.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "Base/Retried.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// 0, or why it could not be flushed.
int flush(const char* path) {
  const int descriptor = retried([&] { return ::open(path, O_RDONLY | O_CLOEXEC); });
  if (descriptor < 0) return errno;
  const int reason = retried([&] { return ::fsync(descriptor); }) < 0 ? errno : 0;
  ::close(descriptor);
  return reason;
}

}  // namespace

void flushToDisk(const fs::path& fileOrFolder) {
  const int reason = flush(fileOrFolder.empty() ? "." : fileOrFolder.c_str());
  if (reason == 0 || fileOrFolder.empty() || fs::is_directory(fileOrFolder)) return;
  throw fs::filesystem_error("can't write to disk", fileOrFolder,
                             std::error_code(reason, std::generic_category()));
}

}  // namespace tobrin
