#include "Mic/FallbackMicSource.h"

#include <cassert>
#include <utility>

namespace tobrin {

FallbackMicSource::FallbackMicSource(std::unique_ptr<MicSource> preferred,
                                     std::unique_ptr<MicSource> fallback)
    : preferred_(std::move(preferred)), fallback_(std::move(fallback)) {
  assert(preferred_ != nullptr && fallback_ != nullptr);
}

void FallbackMicSource::start(std::function<void()> changed) {
  assert(changed);
  changed_ = std::move(changed);
  preferred_->start(changed_);
}

void FallbackMicSource::stop() {
  preferred_->stop();
  followFallback(false);
  changed_ = nullptr;
}

MicActivity FallbackMicSource::read() {
  MicActivity first = preferred_->read();
  const bool isEnough = first.inputDeviceName || first.micInUse();
  followFallback(!isEnough && changed_ != nullptr);
  if (isEnough) return first;
  MicActivity second = fallback_->read();
  return second.recordingProcesses ? second : first;
}

// Only where it is needed: most sessions have one server, which would be asked twice.
void FallbackMicSource::followFallback(bool follow) {
  if (std::exchange(followsFallback_, follow) == follow) return;
  if (follow)
    fallback_->start(changed_);
  else
    fallback_->stop();
}

}  // namespace tobrin
