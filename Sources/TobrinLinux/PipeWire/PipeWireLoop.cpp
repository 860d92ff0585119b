#include "PipeWire/PipeWireLoop.h"

#include <pipewire/pipewire.h>

#include <cassert>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Base/Environment.h"
#include "PipeWire/ClientConfiguration.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {

namespace {

int askForScheduling(spa_loop* /*loop*/, bool /*async*/, uint32_t /*sequence*/,
                     const void* /*data*/, size_t /*size*/, void* /*context*/) {
  requestRealtimeScheduling();
  return 0;
}

int doNothing(spa_loop* /*loop*/, bool /*async*/, uint32_t /*sequence*/, const void* /*data*/,
              size_t /*size*/, void* /*context*/) {
  return 0;
}

}  // namespace

PipeWireLoop::PipeWireLoop() {
  pw_init(nullptr, nullptr);
  // The library would print what this program logs already.
  if (!processEnvironment("PIPEWIRE_DEBUG")) pw_log_set_level(SPA_LOG_LEVEL_NONE);
  loop_ = pw_thread_loop_new("Tobrin.PipeWire", nullptr);
  if (loop_ != nullptr) {
    context_ =
        pw_context_new(pw_thread_loop_get_loop(loop_),
                       pw_properties_new(PW_KEY_CONFIG_NAME, realTimeClientConfiguration(),
                                         PW_KEY_APP_NAME, "Tobrin", PW_KEY_APP_ID, "app.tobrin",
                                         PW_KEY_APP_ICON_NAME, "app.tobrin.Tobrin", nullptr),
                       0);
  }
  if (context_ == nullptr || pw_thread_loop_start(loop_) != 0) {
    const std::string reason = std::generic_category().message(errno);
    if (context_ != nullptr) pw_context_destroy(context_);
    if (loop_ != nullptr) pw_thread_loop_destroy(loop_);
    pw_deinit();
    throw std::runtime_error("the PipeWire library cannot be used (" + reason + ")");
  }
  const PipeWireLock locked(*this);
  // It resumes the stream on the first key after a pause; a delay here would delay that sound.
  pw_loop_invoke(loop(), askForScheduling, 0, nullptr, 0, false, nullptr);
}

PipeWireLoop::~PipeWireLoop() {
  pw_thread_loop_stop(loop_);
  pw_context_destroy(context_);
  pw_thread_loop_destroy(loop_);
  pw_deinit();
}

void PipeWireLoop::lock() {
  pw_thread_loop_lock(loop_);
}

void PipeWireLoop::unlock() {
  pw_thread_loop_unlock(loop_);
}

bool PipeWireLoop::wait(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  assert(!isCurrent());
  timespec deadline{};
  pw_thread_loop_get_time(loop_, &deadline, std::chrono::nanoseconds(limit).count());
  while (!condition()) {
    if (pw_thread_loop_timed_wait_full(loop_, &deadline) != 0) return condition();
  }
  return true;
}

void PipeWireLoop::wake() {
  pw_thread_loop_signal(loop_, false);
}

void PipeWireLoop::finishDataCallbacks() {
  // The data thread runs one task after the other: after this one, all earlier ones are done. Only
  // one caller at a time may queue such tasks, which the lock ensures.
  pw_data_loop_invoke(pw_context_get_data_loop(context_), doNothing, 0, nullptr, 0, true, nullptr);
}

bool PipeWireLoop::isCurrent() const {
  return pw_thread_loop_in_thread(loop_);
}

pw_loop* PipeWireLoop::loop() const {
  return pw_thread_loop_get_loop(loop_);
}

}  // namespace tobrin
