/// Owns a file descriptor and closes it. Thread: any.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <utility>

#include "Base/Retried.h"

namespace tobrin {

class FileDescriptor final {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  ~FileDescriptor() { reset(); }
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    reset(std::exchange(other.fd_, -1));
    return *this;
  }

  /// Opens a file, which programs started from here do not inherit. On failure it owns nothing and
  /// `errno` has the reason. `mode` is for a file that is created.
  static FileDescriptor open(const char* path, int flags, mode_t mode = 0) {
    return FileDescriptor(retried([&] { return ::open(path, flags | O_CLOEXEC, mode); }));
  }

  void reset(int fd = -1) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = fd;
  }
  [[nodiscard]] int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

}  // namespace tobrin
