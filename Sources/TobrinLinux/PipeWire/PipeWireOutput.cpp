#include "PipeWire/PipeWireOutput.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "PipeWire/PipeWireConnection.h"
#include "PipeWire/PipeWireDeviceName.h"
#include "PipeWire/PipeWireGraphWatch.h"
#include "PipeWire/PipeWireLoop.h"
#include "PipeWire/PipeWireTimer.h"
#include "PipeWire/PlaybackOutputs.h"
#include "PipeWire/PlaybackStream.h"
#include "Threads/AsioQueue.h"

namespace tobrin {

namespace {

// A living server links a new stream within some 20 ms; a busy machine may take longer.
constexpr std::chrono::milliseconds linkLimit{500};
constexpr std::chrono::milliseconds longestPause{1000};
// A session manager that was restarted may overlook the streams that were there before it.
constexpr std::chrono::milliseconds firstLinkPatience{1000};
constexpr std::chrono::milliseconds longestLinkPatience{30000};
// A session manager that starts with its server has made the devices by then.
constexpr std::chrono::milliseconds devicePatience{3000};
constexpr auto noDevice = "PipeWire has no output device";
constexpr auto defaultDevice = "-1";  // in the policy's words

}  // namespace

PipeWireOutput::PipeWireOutput(std::shared_ptr<PipeWireLoop> loop)
    : loop_(std::move(loop)),
      gate_(std::make_unique<RenderGate>()),
      notifier_(std::make_unique<AsioQueue>("Tobrin.Audio")),
      linkPatience_(firstLinkPatience) {
  linkWatch_ = std::make_unique<PipeWireTimer>(*loop_, [this] { linkIsMissing(); });
  deviceWatch_ = std::make_unique<PipeWireTimer>(*loop_, [this] { deviceIsMissing(); });
  PipeWireConnection::Events events{.connected = [this](pw_core* core) { connected(core); },
                                    .lost = [this] { lost(); }};
  connection_ = std::make_unique<PipeWireConnection>(*loop_, longestPause, std::move(events));
}

PipeWireOutput::~PipeWireOutput() {
  pause();
  {
    const PipeWireLock locked(*loop_);
    isClosing_.store(true, std::memory_order_relaxed);
    connection_->close();
  }
  // A notice on its way may still call in here, but is not passed on.
  notifier_.reset();
}

void PipeWireOutput::setCallbacks(AudioCallbacks callbacks) {
  assert(callbacks.render != nullptr);
  gate_->callbacks = std::move(callbacks);
}

void PipeWireOutput::choose(const std::string& id) {
  const PipeWireLock locked(*loop_);
  chosen_ = id;
  isChoiceTold_ = false;
  tellChoice();
}

void PipeWireOutput::findOutputs() {
  const PipeWireLock locked(*loop_);
  if (isWanted_ || isClosing_.load(std::memory_order_relaxed)) return;
  connection_->open();
  connection_->rest();
}

bool PipeWireOutput::start() {
  assert(gate_->callbacks.render != nullptr);
  const PipeWireLock locked(*loop_);
  if (isClosing_.load(std::memory_order_relaxed)) return false;
  if (isWanted_ && isRunning()) return true;
  // It goes on trying by itself, and keys in that time do not wait for the answer.
  if (isWanted_ && !startIsAnswered_ && !problem_.empty()) return false;
  isWanted_ = true;
  startIsAnswered_ = true;
  problem_.clear();
  // Publishes the callbacks; pairs with the data thread's load.
  gate_->isOpen.store(true, std::memory_order_release);
  if (connection_->open() && stream_ != nullptr) {
    stream_->setActive(true);
    watchLink();
    watchDevice();
    if (stream_->hasStreamed()) return true;
    const auto settled = [this] { return stream_ == nullptr || isRunning() || !problem_.empty(); };
    // Where no device is expected, waiting for one would delay the fallback at each start.
    if (expectsDevice()) loop_->wait(settled, linkLimit);
    if (isRunning()) return true;
    if (problem_.empty()) problem_ = noDevice;
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
  linkWatch_->stop();
  deviceWatch_->stop();
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
  const PipeWireLock locked(*loop_);
  std::string device;
  if (stream_ != nullptr && stream_->nodeId())
    device = linkedDeviceName(*loop_, *stream_->nodeId());
  return device.empty() ? "PipeWire" : "PipeWire, " + device;
}

void PipeWireOutput::connected(pw_core* core) {
  if (!std::exchange(hasMetServer_, true)) expectsDevice_.store(true, std::memory_order_relaxed);
  problem_.clear();
  if (!std::exchange(isRetry_, false)) watchDevice();
  watch_ = std::make_unique<PipeWireGraphWatch>(
      core, [this] { graphChanged(); }, PipeWireGraphWatch::Depth::devices);
  makeStream(core);
}

void PipeWireOutput::makeStream(pw_core* core) {
  try {
    isChoiceTold_ = false;
    stream_ = std::make_unique<PlaybackStream>(core, *gate_, chosen_.value_or(""),
                                               [this] { streamChanged(); });
    if (!isWanted_) stream_->setActive(false);
    watchLink();
  } catch (const std::runtime_error& error) {
    problem_ = error.what();
    connection_->breakOff(problem_);
  }
}

void PipeWireOutput::lost() {
  stream_.reset();
  watch_.reset();
  isStreaming_.store(false, std::memory_order_relaxed);
  problem_ = connection_->problem();
  startIsAnswered_ = false;
  loop_->wake();
  if (isWanted_) notifyChanged();
}

void PipeWireOutput::streamChanged() {
  if (stream_ == nullptr) return;  // still in its constructor
  const bool streams = stream_->state() == PlaybackStream::State::streaming;
  const bool streamed = isStreaming_.exchange(streams, std::memory_order_relaxed);
  tellChoice();
  watchLink();
  if (streams != streamed) watchDevice();
  if (streams) {
    expectsDevice_.store(true, std::memory_order_relaxed);
    problem_.clear();
    if (isWanted_ && !startIsAnswered_) notifyChanged();
    startIsAnswered_ = false;
  } else if (stream_->state() == PlaybackStream::State::failed) {
    problem_ = expectsDevice() ? "PipeWire refuses the sound (" + stream_->error() + ")" : noDevice;
    isRetry_ = isRetry_ || connection_->core() != nullptr;
    connection_->breakOff(problem_);
  }
  loop_->wake();
}

void PipeWireOutput::graphChanged() {
  if (watch_ == nullptr || stream_ == nullptr) return;  // one of them is still in its constructor
  tellChoice();
  if (!watch_->isSettled()) return;
  SoundOutputs outputs = playbackOutputs(watch_->graph(), stream_->nodeId());
  if (outputs == outputs_) return;
  outputs_ = std::move(outputs);
  if (gate_->callbacks.outputsChanged) gate_->callbacks.outputsChanged(outputs_);
}

// The stream's own wish for a target is not enough: the policy forgets it once the stream has
// played on the default device, as it does while the chosen one is away.
void PipeWireOutput::tellChoice() {
  if (!chosen_ || isChoiceTold_ || watch_ == nullptr || stream_ == nullptr) return;
  const std::optional<uint32_t> stream = stream_->nodeId();
  if (!stream) return;
  isChoiceTold_ = watch_->moveStream(*stream, chosen_->empty() ? defaultDevice : *chosen_);
  // From then on the sound goes where the desktop's mixer has it, also on a later server.
  if (isChoiceTold_ && chosen_->empty()) chosen_.reset();
}

void PipeWireOutput::watchLink() {
  if (isStreaming_.load(std::memory_order_relaxed)) {
    linkPatience_ = firstLinkPatience;
    linkWatch_->stop();
  } else if (isWanted_) {
    linkWatch_->startIn(linkPatience_);
  }
}

void PipeWireOutput::watchDevice() {
  if (isStreaming_.load(std::memory_order_relaxed)) {
    deviceWatch_->stop();
  } else if (isWanted_) {
    deviceWatch_->startIn(devicePatience);
  }
}

void PipeWireOutput::deviceIsMissing() {
  // A server that went away is waited for: with it come its devices.
  if (connection_->core() == nullptr && !isRetry_) return;
  expectsDevice_.store(false, std::memory_order_relaxed);
  problem_ = noDevice;
  startIsAnswered_ = false;
  notifyChanged();
}

void PipeWireOutput::linkIsMissing() {
  if (connection_->core() == nullptr) return;  // it is tried again anyway
  linkPatience_ = std::min(linkPatience_ * 2, longestLinkPatience);
  const bool isNews = problem_.empty();
  problem_ = noDevice;
  startIsAnswered_ = false;
  stream_.reset();
  makeStream(connection_->core());
  if (isNews) notifyChanged();
}

void PipeWireOutput::notifyChanged() {
  notifier_->async([this] {
    if (!isClosing_.load(std::memory_order_relaxed)) gate_->callbacks.changed();
  });
}

}  // namespace tobrin
