/// A flag that one thread raises and another one waits for, together with its file descriptors.
/// Thread: any.
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>

#include "Base/FileDescriptor.h"

namespace tobrin {

class WakeEvent final {
 public:
  /// Throws `std::runtime_error` where no file descriptors are left.
  WakeEvent() : file_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!file_) throw std::runtime_error("no file descriptors left");
  }
  WakeEvent(const WakeEvent&) = delete;
  WakeEvent& operator=(const WakeEvent&) = delete;

  /// Readable from now on, until `clear`.
  void raise() {
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = write(fd(), &one, sizeof one);  // full means raised
  }

  void clear() {
    uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(fd(), &count, sizeof count);  // empty means clear
  }

  /// To poll for reading.
  [[nodiscard]] int fd() const { return file_.get(); }

 private:
  const FileDescriptor file_;
};

}  // namespace tobrin
