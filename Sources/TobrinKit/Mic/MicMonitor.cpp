#include "Mic/MicMonitor.h"

#include <cassert>

namespace tobrin {

/// The state and its steps; every function but the constructor runs on the queue.
class MicMonitor::Core : public std::enable_shared_from_this<Core> {
 public:
  Core(SerialQueue& queue, SerialQueue& main, std::unique_ptr<MicSource> source)
      : queue_(queue), main_(main), source_(std::move(source)) {}

  void start() {
    assert(queue_.isCurrent());
    if (running_) return;
    running_ = true;
    source_->start([weak = weak_from_this(), &queue = queue_] {
      queue.async([weak] {
        if (const auto core = weak.lock()) core->evaluate();
      });
    });
    evaluate();
    report(reported_);
    reportOutput(outputReported_);
  }

  void stop() {
    assert(queue_.isCurrent());
    if (!running_) return;
    running_ = false;
    ++pendingRelease_;
    reported_ = false;
    outputReported_ = false;
    source_->stop();
  }

  void refresh() {
    if (running_) evaluate();
  }

  MicActivity read() { return source_->read(); }

  OnChange onChange;
  std::function<void(bool)> onOutputRecorded;
  std::chrono::duration<double> releaseDelay{1.0};

 private:
  void evaluate() {
    assert(queue_.isCurrent());
    if (!running_) return;
    const MicActivity activity = source_->read();
    if (activity.outputRecorded != outputReported_) reportOutput(activity.outputRecorded);
    if (activity.micInUse()) {
      ++pendingRelease_;
      releaseIsPending_ = false;
      if (!reported_) report(true);
    } else if (reported_ && !releaseIsPending_) {
      scheduleRelease();
    }
  }

  void scheduleRelease() {
    releaseIsPending_ = true;
    const auto delay = std::chrono::duration_cast<SerialQueue::Duration>(releaseDelay);
    queue_.after(delay, [weak = weak_from_this(), number = ++pendingRelease_] {
      const auto core = weak.lock();
      if (core && core->pendingRelease_ == number) core->release();
    });
  }

  void release() {
    releaseIsPending_ = false;
    if (!source_->read().micInUse()) report(false);
  }

  void report(bool inUse) {
    reported_ = inUse;
    main_.async([weak = weak_from_this(), inUse] {
      const auto core = weak.lock();
      if (core && core->onChange) core->onChange(inUse);
    });
  }

  void reportOutput(bool recorded) {
    outputReported_ = recorded;
    main_.async([weak = weak_from_this(), recorded] {
      const auto core = weak.lock();
      if (core && core->onOutputRecorded) core->onOutputRecorded(recorded);
    });
  }

  SerialQueue& queue_;
  SerialQueue& main_;
  std::unique_ptr<MicSource> source_;
  bool running_ = false;
  bool reported_ = false;
  bool outputReported_ = false;
  bool releaseIsPending_ = false;
  uint64_t pendingRelease_ = 0;  // number of the release that counts; a later one voids it
};

MicMonitor::MicMonitor(SerialQueue& queue, SerialQueue& main, std::unique_ptr<MicSource> source)
    : queue_(queue), core_(std::make_shared<Core>(queue, main, std::move(source))) {}

MicMonitor::~MicMonitor() {
  assert(!queue_.isCurrent());
  queue_.sync([this] { core_->stop(); });
}

void MicMonitor::setOnChange(OnChange onChange) {
  core_->onChange = std::move(onChange);
}

void MicMonitor::setOnOutputRecorded(std::function<void(bool recorded)> onChange) {
  core_->onOutputRecorded = std::move(onChange);
}

void MicMonitor::setReleaseDelay(std::chrono::duration<double> delay) {
  core_->releaseDelay = delay;
}

void MicMonitor::start() {
  queue_.async([core = core_] { core->start(); });
}

void MicMonitor::stop() {
  queue_.async([core = core_] { core->stop(); });
}

void MicMonitor::refresh() {
  queue_.async([core = core_] { core->refresh(); });
}

MicActivity MicMonitor::current() {
  MicActivity activity;
  queue_.sync([&] { activity = core_->read(); });
  return activity;
}

}  // namespace tobrin
