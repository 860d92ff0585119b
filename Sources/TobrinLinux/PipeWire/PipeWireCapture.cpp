#include "PipeWire/PipeWireCapture.h"

#include <pipewire/pipewire.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "PipeWire/PipeWireConnection.h"
#include "PipeWire/PipeWireGraphWatch.h"
#include "PipeWire/PipeWireLoop.h"
#include "PipeWire/PipeWireStream.h"

namespace tobrin {

namespace {

constexpr std::chrono::milliseconds longestPause{1000};
constexpr std::chrono::milliseconds answerLimit{500};
constexpr std::chrono::milliseconds streamLimit{1500};
constexpr double nanoseconds = 1e9;

/// The role of music production: servers that clean up the sound of calls leave it alone. Another
/// microphone is no substitute for one that has gone, so the server is not to move the stream.
pw_properties* streamProperties(const std::string& input) {
  return pw_properties_new(
      PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE, "Production",
      PW_KEY_MEDIA_NAME, "Your keyboard", PW_KEY_NODE_NAME, "tobrin-record",
      PW_KEY_NODE_DESCRIPTION, "Tobrin", PW_KEY_APP_NAME, "Tobrin", PW_KEY_APP_ID, "app.tobrin",
      PW_KEY_APP_ICON_NAME, "tobrin", PW_KEY_NODE_LATENCY, "1024/48000", PW_KEY_TARGET_OBJECT,
      input.c_str(), PW_KEY_NODE_DONT_RECONNECT, "true", nullptr);
}

/// When the first of a block's frames was at the input. The stream's time is that of the cycle in
/// which the block's last frame arrived.
int64_t startOf(const pw_time& time, std::size_t frames) {
  const double delay =
      time.rate.denom == 0 ? 0 : static_cast<double>(time.delay) * time.rate.num / time.rate.denom;
  const double length = static_cast<double>(frames) / SoundCapture::rate;
  return time.now - static_cast<int64_t>((delay + length) * nanoseconds);
}

}  // namespace

PipeWireCapture::PipeWireCapture(std::shared_ptr<PipeWireLoop> loop) : loop_(std::move(loop)) {
  PipeWireConnection::Events events{.connected = [this](pw_core* core) { connected(core); },
                                    .lost = [this] { lost(); }};
  connection_ = std::make_unique<PipeWireConnection>(*loop_, longestPause, std::move(events));
}

PipeWireCapture::~PipeWireCapture() {
  stop();
}

std::vector<SoundCapture::Input> PipeWireCapture::inputs() {
  const PipeWireLock locked(*loop_);
  connectAndSettle();
  auto listed = inputs_;
  if (!isStarted_) connection_->close();
  return listed;
}

bool PipeWireCapture::start(const std::string& input) {
  const PipeWireLock locked(*loop_);
  if (isStarted_) return true;
  take([](const Block&) {});  // what an earlier recording left
  if (!connectAndSettle()) {
    problem_ = connection_->problem();
  } else if (const Input* const found = find(input)) {
    input_ = found->name;
    isStarted_ = true;
    followInput();
    loop_->wait([this] { return problem_.empty(); }, streamLimit);
    if (problem_.empty()) return true;
  } else {
    problem_ =
        input.empty() ? "there is no microphone" : "there is no microphone \"" + input + "\"";
  }
  isStarted_ = false;
  connection_->close();
  return false;
}

void PipeWireCapture::stop() {
  const PipeWireLock locked(*loop_);
  isStarted_ = false;
  connection_->close();
}

void PipeWireCapture::take(const std::function<void(const Block&)>& receive) {
  for (const TimedBlock* block = ring_.front(); block != nullptr; block = ring_.front()) {
    receive({block->startNs,
             std::span(block->samples).first(block->frames * TimedBlock::channelCount)});
    ring_.pop();
  }
}

std::string PipeWireCapture::problem() const {
  const PipeWireLock locked(*loop_);
  return problem_;
}

std::string PipeWireCapture::description() const {
  const PipeWireLock locked(*loop_);
  return isStarted_ ? description_ : std::string();
}

/// Whether a server answers and has said which microphones there are.
bool PipeWireCapture::connectAndSettle() {
  if (!connection_->open()) return false;
  const auto isKnown = [this] { return watch_ == nullptr || watch_->isSettled(); };
  return loop_->wait(isKnown, answerLimit) && watch_ != nullptr;
}

void PipeWireCapture::connected(pw_core* core) {
  watch_ = std::make_unique<PipeWireGraphWatch>(core, [this] { followInput(); });
}

void PipeWireCapture::lost() {
  stream_.reset();
  watch_.reset();
  inputs_.clear();
  if (isStarted_) problem_ = connection_->problem();
  loop_->wake();
}

/// Keeps the stream while its microphone is there.
void PipeWireCapture::followInput() {
  if (watch_ == nullptr || !watch_->isSettled()) return;
  inputs_ = watch_->graph().microphones();
  loop_->wake();
  if (!isStarted_) return;
  const Input* const input = find(input_);
  if (input == nullptr) {
    stream_.reset();
    problem_ = description_ + " is gone";
  } else if (stream_ == nullptr) {
    description_ = input->description;
    problem_ = description_ + " gives no sound";  // until it does
    try {
      stream_ = std::make_unique<PipeWireStream>(
          connection_->core(), PipeWireStream::Role{.direction = PipeWireStream::Direction::record,
                                                    .layout = PipeWireStream::Layout::interleaved,
                                                    .properties = streamProperties(input_),
                                                    .process = process,
                                                    .context = this,
                                                    .stateChanged = [this] { streamChanged(); }});
    } catch (const std::runtime_error& error) {
      problem_ = error.what();
    }
  }
}

void PipeWireCapture::streamChanged() {
  if (stream_ == nullptr) return;  // still in its constructor
  if (stream_->state() == PipeWireStream::State::streaming) {
    problem_.clear();
  } else if (stream_->state() == PipeWireStream::State::failed) {
    problem_ = "PipeWire refuses to record (" + stream_->error() + ")";
    connection_->breakOff(problem_);
  }
  loop_->wake();
}

const SoundCapture::Input* PipeWireCapture::find(const std::string& name) const {
  const auto found = std::find_if(inputs_.begin(), inputs_.end(), [&](const Input& input) {
    return name.empty() ? input.isDefault : input.name == name;
  });
  if (found != inputs_.end()) return &*found;
  // A server without a session manager has microphones and names none of them the default.
  return name.empty() && !inputs_.empty() ? &inputs_.front() : nullptr;
}

void PipeWireCapture::process(void* self, pw_stream* stream, pw_buffer& block) {
  const spa_data& data = block.buffer->datas[0];
  if (data.data == nullptr) return;
  pw_time time{};
  pw_stream_get_time_n(stream, &time, sizeof time);
  const auto* bytes = static_cast<const uint8_t*>(data.data) + data.chunk->offset;
  const std::size_t frames = data.chunk->size / (TimedBlock::channelCount * sizeof(float));
  const std::span samples(reinterpret_cast<const float*>(bytes), frames * TimedBlock::channelCount);
  static_cast<PipeWireCapture*>(self)->ring_.push(startOf(time, frames), samples);
}

}  // namespace tobrin
