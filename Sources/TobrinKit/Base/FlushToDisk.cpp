#include "Base/FlushToDisk.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "Base/FileDescriptor.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// 0, or why it could not be flushed.
int flush(const char* path) {
  const FileDescriptor file = FileDescriptor::open(path, O_RDONLY);
  return file && retried([&] { return ::fsync(file.get()); }) == 0 ? 0 : errno;
}

}  // namespace

void flushToDisk(const fs::path& fileOrFolder) {
  const int reason = flush(fileOrFolder.empty() ? "." : fileOrFolder.c_str());
  if (reason == 0 || fileOrFolder.empty() || fs::is_directory(fileOrFolder)) return;
  throw fs::filesystem_error("can't write to disk", fileOrFolder,
                             std::error_code(reason, std::generic_category()));
}

}  // namespace tobrin
