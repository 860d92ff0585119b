#include "RuleFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "Base/FileDescriptor.h"

namespace tobrin {
namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

void writeAll(const FileDescriptor& file, std::string_view text, const std::string& path) {
  while (!text.empty()) {
    const ssize_t written = retried([&] { return write(file.get(), text.data(), text.size()); });
    if (written < 0) fail(path);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

RuleFile::RuleFile(const std::string& root)
    : folder_(root + "/etc/udev/rules.d"), path_(folder_ + "/70-tobrin-keys.rules") {}

void RuleFile::install(std::string_view rule) const {
  constexpr mode_t everyoneReads = 0644;
  std::filesystem::create_directories(folder_);
  std::string draft = path_ + ".XXXXXX";  // an ending that the device manager does not read
  const FileDescriptor file(mkostemp(draft.data(), O_CLOEXEC));
  if (!file) fail(folder_);
  try {
    writeAll(file, rule, draft);
    if (fchmod(file.get(), everyoneReads) != 0 || fsync(file.get()) != 0) fail(draft);
    if (rename(draft.c_str(), path_.c_str()) != 0) fail(path_);
  } catch (...) {
    unlink(draft.c_str());
    throw;
  }
}

bool RuleFile::remove() const {
  if (unlink(path_.c_str()) == 0) return true;
  if (errno != ENOENT) fail(path_);
  return false;
}

}  // namespace tobrin
