/// What is to be heard of the mouse: set on any thread and followed by the key thread, which waits
/// for changes. Thread: any.
#pragma once

#include <atomic>

#include "Input/KeySource.h"
#include "System/WakeEvent.h"

namespace tobrin {

class MouseWish final {
 public:
  void set(MouseHearing hearing) {
    if (hearing_.exchange(hearing) != hearing) changed_.raise();
  }
  [[nodiscard]] MouseHearing hearing() const { return hearing_; }

  /// To poll for reading: readable after a change, until `clear`.
  [[nodiscard]] int fd() const { return changed_.fd(); }
  void clear() { changed_.clear(); }

 private:
  std::atomic<MouseHearing> hearing_{MouseHearing::nothing};
  WakeEvent changed_;
};

}  // namespace tobrin
