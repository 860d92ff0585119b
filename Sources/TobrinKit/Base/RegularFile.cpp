#include "Base/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tobrin {
namespace {

[[noreturn]] void fail(int reason) {
  throw std::system_error(reason, std::generic_category());
}

void demandRegular(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) fail(EISDIR);
  if (!S_ISREG(status.st_mode)) fail(EINVAL);
}

}  // namespace

RegularFile::RegularFile(const std::filesystem::path& path) {
  const std::string& name = path.native();
  if (name.find('\0') != std::string::npos) fail(ENOENT);
  struct stat status {};
  // Checked before it is opened: opening alone starts some devices.
  if (::stat(name.c_str(), &status) != 0) fail(errno);
  demandRegular(status);
  // Without O_NONBLOCK a FIFO that took the file's place meanwhile would be waited for.
  descriptor_ = FileDescriptor::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!descriptor_ || ::fstat(descriptor_.get(), &status) != 0) fail(errno);
  demandRegular(status);
  size_ = static_cast<uint64_t>(status.st_size);
}

int RegularFile::duplicate() const {
  const int copy = ::fcntl(descriptor_.get(), F_DUPFD_CLOEXEC, 0);
  if (copy < 0) fail(errno);
  return copy;
}

std::string RegularFile::readText(uint64_t maxBytes) const {
  if (size_ > maxBytes) fail(EFBIG);
  std::string text;
  // One byte more than the size shows the end; a file that grows in that time is read on.
  for (std::size_t length = 0;;) {
    text.resize(length == 0 ? size_ + 1 : 2 * length);
    const ssize_t count =
        retried([&] { return ::read(descriptor_.get(), &text[length], text.size() - length); });
    if (count < 0) fail(errno);
    length += static_cast<std::size_t>(count);
    if (length > maxBytes) fail(EFBIG);
    if (count == 0) {
      text.resize(length);
      return text;
    }
  }
}

}  // namespace tobrin
