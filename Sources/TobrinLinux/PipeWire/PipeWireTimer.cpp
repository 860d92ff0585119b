#include "PipeWire/PipeWireTimer.h"

#include <pipewire/pipewire.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "PipeWire/PipeWireLoop.h"

namespace tobrin {

PipeWireTimer::PipeWireTimer(PipeWireLoop& loop, std::function<void()> fired)
    : loop_(loop), fired_(std::move(fired)) {
  const PipeWireLock locked(loop_);
  source_ = pw_loop_add_timer(
      loop_.loop(),
      [](void* self, uint64_t /*expirations*/) { static_cast<PipeWireTimer*>(self)->fired_(); },
      this);
  if (source_ == nullptr) throw std::system_error(errno, std::generic_category(), "no timer");
}

PipeWireTimer::~PipeWireTimer() {
  const PipeWireLock locked(loop_);
  pw_loop_destroy_source(loop_.loop(), source_);
}

void PipeWireTimer::startIn(std::chrono::milliseconds delay) {
  set(std::max<std::chrono::nanoseconds>(delay, std::chrono::nanoseconds(1)));
}

void PipeWireTimer::stop() {
  set(std::chrono::nanoseconds(0));  // switches the timer off
}

void PipeWireTimer::set(std::chrono::nanoseconds delay) {
  timespec value{};
  value.tv_sec = static_cast<time_t>(delay.count() / 1'000'000'000);
  value.tv_nsec = static_cast<long>(delay.count() % 1'000'000'000);
  pw_loop_update_timer(loop_.loop(), source_, &value, nullptr, false);
}

}  // namespace tobrin
