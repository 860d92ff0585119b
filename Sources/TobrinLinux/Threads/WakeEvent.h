/// A flag that one thread raises and another one waits for beside its file descriptors.
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>

namespace tobrin {

/// Thread: any.
class WakeEvent final {
 public:
  WakeEvent() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (fd_ < 0) throw std::runtime_error("no file descriptors left");
  }
  ~WakeEvent() { close(fd_); }
  WakeEvent(const WakeEvent&) = delete;
  WakeEvent& operator=(const WakeEvent&) = delete;

  /// Readable from now on, until `clear`.
  void raise() {
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = write(fd_, &one, sizeof one);  // full means raised
  }

  void clear() {
    uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(fd_, &count, sizeof count);  // empty means clear
  }

  /// To poll for reading.
  [[nodiscard]] int fd() const { return fd_; }

 private:
  const int fd_;
};

}  // namespace tobrin
