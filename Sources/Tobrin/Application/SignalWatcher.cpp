#include "Application/SignalWatcher.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace tobrin {

namespace {

sigset_t endings() {
  sigset_t set;
  sigemptyset(&set);
  for (const int each : {SIGINT, SIGTERM, SIGHUP})
    sigaddset(&set, each);
  return set;
}

}  // namespace

void SignalWatcher::holdSignals() {
  const sigset_t set = endings();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

SignalWatcher::SignalWatcher(std::function<void()> onEnd) {
  const sigset_t set = endings();
  descriptor_.reset(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!descriptor_) return;
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_.get(), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this, end = std::move(onEnd)] {
                     signalfd_siginfo info;
                     while (read(descriptor_.get(), &info, sizeof info) > 0)
                       end();
                   });
}

SignalWatcher::~SignalWatcher() = default;

}  // namespace tobrin
