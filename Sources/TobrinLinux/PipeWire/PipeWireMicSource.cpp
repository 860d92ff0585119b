#include "PipeWire/PipeWireMicSource.h"

#include <unistd.h>

#include <chrono>

#include "PipeWire/PipeWireConnection.h"
#include "PipeWire/PipeWireGraphWatch.h"
#include "PipeWire/PipeWireLoop.h"

namespace tobrin {

namespace {

// The watch lasts as long as the program: where there is no server, it asks seldom.
constexpr std::chrono::milliseconds longestPause{5000};
constexpr std::chrono::milliseconds answerLimit{500};

}  // namespace

PipeWireMicSource::PipeWireMicSource(std::shared_ptr<PipeWireLoop> loop) : loop_(std::move(loop)) {
  PipeWireConnection::Events events{.connected = [this](pw_core* core) { connected(core); },
                                    .lost = [this] { lost(); }};
  connection_ = std::make_unique<PipeWireConnection>(*loop_, longestPause, std::move(events));
}

PipeWireMicSource::~PipeWireMicSource() {
  stop();
}

void PipeWireMicSource::start(std::function<void()> changed) {
  const PipeWireLock locked(*loop_);
  isStarted_ = true;
  changed_ = std::move(changed);
  connection_->open();
}

void PipeWireMicSource::stop() {
  const PipeWireLock locked(*loop_);
  isStarted_ = false;
  changed_ = nullptr;
  connection_->close();
}

MicActivity PipeWireMicSource::read() {
  const PipeWireLock locked(*loop_);
  if (isStarted_ || connection_->open()) {
    loop_->wait([this] { return watch_ == nullptr || watch_->isSettled(); }, answerLimit);
  }
  MicActivity activity = activity_;
  if (!isStarted_) connection_->close();
  return activity;
}

void PipeWireMicSource::connected(pw_core* core) {
  watch_ = std::make_unique<PipeWireGraphWatch>(core, [this] { updated(); });
}

void PipeWireMicSource::lost() {
  watch_.reset();
  keep({});  // now it is not known who records
}

void PipeWireMicSource::updated() {
  if (watch_ != nullptr && watch_->isSettled()) keep(watch_->graph().activity(getpid()));
}

void PipeWireMicSource::keep(MicActivity activity) {
  const bool isNews = activity != activity_;
  activity_ = std::move(activity);
  if (isNews && changed_) changed_();
  loop_->wake();
}

}  // namespace tobrin
