/// Turns the signals that ask a program to end into a call from the event loop. Thread: main.
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "Base/FileDescriptor.h"

namespace tobrin {

class SignalWatcher final {
 public:
  /// Keeps SIGINT, SIGTERM and SIGHUP from the calling thread and all it starts later: call it
  /// before there is another thread.
  static void holdSignals();

  /// `onEnd` is called from the event loop, once a signal; the loop's application exists by now.
  explicit SignalWatcher(std::function<void()> onEnd);
  ~SignalWatcher();
  SignalWatcher(const SignalWatcher&) = delete;
  SignalWatcher& operator=(const SignalWatcher&) = delete;

 private:
  FileDescriptor descriptor_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tobrin
