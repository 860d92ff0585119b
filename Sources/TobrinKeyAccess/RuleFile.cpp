#include "RuleFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tobrin {
namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

void writeAll(int file, std::string_view text, const std::string& path) {
  while (!text.empty()) {
    const ssize_t written = write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
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
  const int file = mkostemp(draft.data(), O_CLOEXEC);
  if (file < 0) fail(folder_);
  try {
    writeAll(file, rule, draft);
    if (fchmod(file, everyoneReads) != 0 || fsync(file) != 0) fail(draft);
    if (rename(draft.c_str(), path_.c_str()) != 0) fail(path_);
  } catch (...) {
    close(file);
    unlink(draft.c_str());
    throw;
  }
  close(file);
}

bool RuleFile::remove() const {
  if (unlink(path_.c_str()) == 0) return true;
  if (errno != ENOENT) fail(path_);
  return false;
}

}  // namespace tobrin
