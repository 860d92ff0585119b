#include "PipeWire/PipeWireConnection.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstring>

#include "PipeWire/PipeWireCalls.h"
#include "PipeWire/PipeWireLoop.h"

namespace tobrin {

namespace {

constexpr std::chrono::milliseconds firstPause{100};

}  // namespace

struct PipeWireConnection::Hooks {
  spa_source* timer = nullptr;
  spa_hook core{};
  pw_core_events events{};
};

PipeWireConnection::PipeWireConnection(PipeWireLoop& loop, std::chrono::milliseconds longestPause,
                                       Events events)
    : loop_(loop),
      longestPause_(longestPause),
      events_(std::move(events)),
      hooks_(std::make_unique<Hooks>()),
      pause_(firstPause) {
  hooks_->events.version = PW_VERSION_CORE_EVENTS;
  hooks_->events.error = coreError;
  const PipeWireLock locked(loop_);
  hooks_->timer = pw_loop_add_timer(loop_.loop(), timerFired, this);
  assert(hooks_->timer != nullptr);
}

PipeWireConnection::~PipeWireConnection() {
  const PipeWireLock locked(loop_);
  close();
  pw_loop_destroy_source(loop_.loop(), hooks_->timer);
}

bool PipeWireConnection::open() {
  wanted_ = true;
  if (broken_) drop();
  if (core_ != nullptr || connect()) return true;
  pause_ = firstPause;
  scheduleIn(pause_);
  return false;
}

void PipeWireConnection::rest() {
  wanted_ = false;
  if (!broken_) scheduleIn(std::chrono::nanoseconds(0));
}

void PipeWireConnection::close() {
  wanted_ = false;
  scheduleIn(std::chrono::nanoseconds(0));
  drop();
}

void PipeWireConnection::breakOff(const std::string& reason) {
  if (core_ == nullptr || broken_) return;
  problem_ = reason;
  broken_ = true;
  scheduleIn(std::chrono::nanoseconds(1));
}

void PipeWireConnection::coreError(void* self, uint32_t id, int /*sequence*/, int result,
                                   const char* /*message*/) {
  if (id != PW_ID_CORE || result != -EPIPE) return;
  static_cast<PipeWireConnection*>(self)->breakOff("the PipeWire server went away");
}

void PipeWireConnection::timerFired(void* self, uint64_t /*expirations*/) {
  auto& connection = *static_cast<PipeWireConnection*>(self);
  if (connection.broken_) {
    connection.drop();
    // A server that goes as soon as it has come is a failed attempt too.
    const auto lifetime = std::chrono::steady_clock::now() - connection.connectedAt_;
    if (lifetime < connection.longestPause_) {
      connection.lengthenPause();
    } else {
      connection.pause_ = firstPause;
    }
  } else if (connection.wanted_ && connection.core_ == nullptr && !connection.connect()) {
    connection.lengthenPause();
  }
  if (connection.wanted_ && connection.core_ == nullptr) connection.scheduleIn(connection.pause_);
}

bool PipeWireConnection::connect() {
  core_ = pw_context_connect(loop_.context(), nullptr, 0);
  if (core_ == nullptr) {
    problem_ = std::string("no PipeWire server answers (") + std::strerror(errno) + ")";
    return false;
  }
  problem_.clear();
  connectedAt_ = std::chrono::steady_clock::now();
  addListener(core_, hooks_->core, hooks_->events, this);
  events_.connected(core_);
  return true;
}

void PipeWireConnection::drop() {
  broken_ = false;
  if (core_ == nullptr) return;
  events_.lost();
  spa_hook_remove(&hooks_->core);
  pw_core_disconnect(core_);
  core_ = nullptr;
}

void PipeWireConnection::lengthenPause() {
  pause_ = std::min(pause_ * 2, longestPause_);
}

void PipeWireConnection::scheduleIn(std::chrono::nanoseconds delay) {
  // A value of nothing at all switches the timer off.
  timespec value{};
  value.tv_sec = static_cast<time_t>(delay.count() / 1'000'000'000);
  value.tv_nsec = static_cast<long>(delay.count() % 1'000'000'000);
  pw_loop_update_timer(loop_.loop(), hooks_->timer, &value, nullptr, false);
}

}  // namespace tobrin
