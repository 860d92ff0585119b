#include "PipeWire/PipeWireOutput.h"

#include <cassert>
#include <chrono>
#include <stdexcept>

#include "PipeWire/PipeWireConnection.h"
#include "PipeWire/PipeWireLoop.h"
#include "PipeWire/PipeWireStream.h"
#include "Threads/AsioQueue.h"

namespace tobrin {

namespace {

// A living server links a new stream within some 20 ms; a busy machine may take longer.
constexpr std::chrono::milliseconds linkLimit{500};
constexpr std::chrono::milliseconds longestPause{1000};

}  // namespace

PipeWireOutput::PipeWireOutput(std::shared_ptr<PipeWireLoop> loop)
    : loop_(std::move(loop)),
      gate_(std::make_unique<RenderGate>()),
      notifier_(std::make_unique<AsioQueue>("Tobrin.Audio")) {
  connection_ = std::make_unique<PipeWireConnection>(
      *loop_, longestPause,
      PipeWireConnection::Events{.connected = [this](pw_core* core) { connected(core); },
                                 .lost = [this] { lost(); }});
}

PipeWireOutput::~PipeWireOutput() {
  isClosing_.store(true, std::memory_order_relaxed);
  notifier_.reset();
  pause();
  const PipeWireLock locked(*loop_);
  connection_->close();
}

void PipeWireOutput::setCallbacks(AudioCallbacks callbacks) {
  assert(callbacks.render != nullptr);
  gate_->callbacks = std::move(callbacks);
}

bool PipeWireOutput::start() {
  assert(gate_->callbacks.render != nullptr);
  const PipeWireLock locked(*loop_);
  if (isWanted_ && isRunning()) return true;
  isWanted_ = true;
  startIsAnswered_ = true;
  // Publishes the callbacks; pairs with the data thread's load.
  gate_->isOpen.store(true, std::memory_order_release);
  if (connection_->open() && stream_ != nullptr) {
    stream_->setActive(true);
    if (stream_->hasStreamed()) return true;
    const auto settled = [this] { return stream_ == nullptr || isRunning() || !problem_.empty(); };
    loop_->wait(settled, linkLimit);
    if (isRunning()) return true;
    if (problem_.empty()) problem_ = "PipeWire has no output device";
  }
  if (stream_ == nullptr && problem_.empty()) problem_ = connection_->problem();
  startIsAnswered_ = false;
  return false;
}

void PipeWireOutput::pause() {
  const PipeWireLock locked(*loop_);
  isWanted_ = false;
  gate_->isOpen.store(false, std::memory_order_relaxed);
  connection_->rest();
  if (stream_ != nullptr) stream_->setActive(false);
  loop_->finishDataCallbacks();
}

bool PipeWireOutput::isRunning() const {
  return isStreaming_.load(std::memory_order_relaxed) &&
         gate_->isOpen.load(std::memory_order_relaxed);
}

std::string PipeWireOutput::problem() const {
  const PipeWireLock locked(*loop_);
  return problem_;
}

std::string PipeWireOutput::description() const {
  return "PipeWire";
}

void PipeWireOutput::connected(pw_core* core) {
  problem_.clear();
  try {
    stream_ = std::make_unique<PipeWireStream>(core, *gate_, [this] { streamChanged(); });
  } catch (const std::runtime_error& error) {
    problem_ = error.what();
    connection_->breakOff(problem_);
  }
}

void PipeWireOutput::lost() {
  stream_.reset();
  isStreaming_.store(false, std::memory_order_relaxed);
  problem_ = connection_->problem();
  startIsAnswered_ = false;
  loop_->wake();
  if (isWanted_) notifyChanged();
}

void PipeWireOutput::streamChanged() {
  if (stream_ == nullptr) return;  // still in its constructor
  const bool streams = stream_->state() == PipeWireStream::State::streaming;
  isStreaming_.store(streams, std::memory_order_relaxed);
  if (streams) {
    problem_.clear();
    if (isWanted_ && !startIsAnswered_) notifyChanged();
    startIsAnswered_ = false;
  } else if (stream_->state() == PipeWireStream::State::failed) {
    problem_ = stream_->error();
    connection_->breakOff(problem_);
  }
  loop_->wake();
}

void PipeWireOutput::notifyChanged() {
  notifier_->async([this] {
    if (!isClosing_.load(std::memory_order_relaxed)) gate_->callbacks.changed();
  });
}

}  // namespace tobrin
