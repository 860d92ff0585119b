#include "PipeWire/PipeWireConnection.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "PipeWire/PipeWireCalls.h"
#include "PipeWire/PipeWireLoop.h"

namespace tobrin {

namespace {

constexpr std::chrono::milliseconds firstPause{100};

}  // namespace

struct PipeWireConnection::Hooks {
  spa_hook core{};
  pw_core_events events{};
};

PipeWireConnection::PipeWireConnection(PipeWireLoop& loop, std::chrono::milliseconds longestPause,
                                       Events events)
    : loop_(loop),
      longestPause_(longestPause),
      events_(std::move(events)),
      hooks_(std::make_unique<Hooks>()),
      timer_(loop, [this] { timerFired(); }),
      pause_(firstPause) {
  hooks_->events.version = PW_VERSION_CORE_EVENTS;
  hooks_->events.error = coreError;
}

PipeWireConnection::~PipeWireConnection() {
  const PipeWireLock locked(loop_);
  close();
}

bool PipeWireConnection::open() {
  wanted_ = true;
  if (broken_) drop();
  if (core_ != nullptr || connect()) return true;
  pause_ = firstPause;
  timer_.startIn(pause_);
  return false;
}

void PipeWireConnection::rest() {
  wanted_ = false;
  if (!broken_) timer_.stop();
}

void PipeWireConnection::close() {
  wanted_ = false;
  timer_.stop();
  drop();
}

void PipeWireConnection::breakOff(const std::string& reason) {
  if (core_ == nullptr || broken_) return;
  problem_ = reason;
  broken_ = true;
  timer_.startIn(std::chrono::milliseconds(0));
}

void PipeWireConnection::coreError(void* self, uint32_t id, int /*sequence*/, int result,
                                   const char* /*message*/) {
  if (id != PW_ID_CORE || result != -EPIPE) return;
  static_cast<PipeWireConnection*>(self)->breakOff("the PipeWire server went away");
}

void PipeWireConnection::timerFired() {
  if (broken_) {
    drop();
    // A server that goes as soon as it has come is a failed attempt too.
    if (std::chrono::steady_clock::now() - connectedAt_ < longestPause_) {
      lengthenPause();
    } else {
      pause_ = firstPause;
    }
  } else if (wanted_ && core_ == nullptr && !connect()) {
    lengthenPause();
  }
  if (wanted_ && core_ == nullptr) timer_.startIn(pause_);
}

bool PipeWireConnection::connect() {
  core_ = pw_context_connect(loop_.context(), nullptr, 0);
  if (core_ == nullptr) {
    problem_ = "no PipeWire server answers (" + std::generic_category().message(errno) + ")";
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

}  // namespace tobrin
