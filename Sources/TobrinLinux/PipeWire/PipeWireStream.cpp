#include "PipeWire/PipeWireStream.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <array>
#include <cassert>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tobrin {

namespace {

constexpr uint32_t channelCount = 2;
constexpr uint32_t sampleRate = 48000;

const spa_pod* stereoFloat(spa_pod_builder& builder, PipeWireStream::Layout layout) {
  const bool isPlanar = layout == PipeWireStream::Layout::planar;
  spa_audio_info_raw info{};
  info.format = isPlanar ? SPA_AUDIO_FORMAT_F32P : SPA_AUDIO_FORMAT_F32;
  info.rate = sampleRate;
  info.channels = channelCount;
  info.position[0] = SPA_AUDIO_CHANNEL_FL;
  info.position[1] = SPA_AUDIO_CHANNEL_FR;
  return spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info);
}

PipeWireStream::State asState(int state) {
  switch (state) {
    case PW_STREAM_STATE_PAUSED:
      return PipeWireStream::State::idle;
    case PW_STREAM_STATE_STREAMING:
      return PipeWireStream::State::streaming;
    case PW_STREAM_STATE_CONNECTING:
      return PipeWireStream::State::connecting;
    default:
      return PipeWireStream::State::failed;
  }
}

}  // namespace

struct PipeWireStream::Hooks {
  spa_hook listener{};
  pw_stream_events events{};
};

PipeWireStream::PipeWireStream(pw_core* core, Role role)
    : role_(std::move(role)), hooks_(std::make_unique<Hooks>()) {
  assert(role_.process != nullptr);
  stream_ = pw_stream_new(core, "Tobrin", role_.properties);
  if (stream_ == nullptr) {
    throw std::runtime_error("PipeWire makes no stream (" + std::generic_category().message(errno) +
                             ")");
  }
  hooks_->events.version = PW_VERSION_STREAM_EVENTS;
  hooks_->events.process = process;
  hooks_->events.state_changed = [](void* self, pw_stream_state from, pw_stream_state to,
                                    const char* error) { changed(self, from, to, error); };
  pw_stream_add_listener(stream_, &hooks_->listener, &hooks_->events, this);
  connect();
}

PipeWireStream::~PipeWireStream() {
  spa_hook_remove(&hooks_->listener);
  pw_stream_destroy(stream_);
}

void PipeWireStream::connect() {
  std::array<uint8_t, 512> bytes{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, bytes.data(), bytes.size());
  const spa_pod* format = stereoFloat(builder, role_.layout);
  const int flags =
      PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS;
  const bool plays = role_.direction == Direction::play;
  const int result = pw_stream_connect(stream_, plays ? PW_DIRECTION_OUTPUT : PW_DIRECTION_INPUT,
                                       PW_ID_ANY, static_cast<pw_stream_flags>(flags), &format, 1);
  if (result >= 0) return;
  pw_stream_destroy(stream_);
  throw std::runtime_error("PipeWire connects no stream (" +
                           std::generic_category().message(-result) + ")");
}

void PipeWireStream::changed(void* self, int /*from*/, int to, const char* error) {
  auto& stream = *static_cast<PipeWireStream*>(self);
  stream.state_ = asState(to);
  if (error != nullptr) stream.error_ = error;
  stream.role_.stateChanged();
}

void PipeWireStream::process(void* self) {
  const auto& stream = *static_cast<const PipeWireStream*>(self);
  pw_buffer* const block = pw_stream_dequeue_buffer(stream.stream_);
  if (block == nullptr) return;
  stream.role_.process(stream.role_.context, stream.stream_, *block);
  pw_stream_queue_buffer(stream.stream_, block);
}

}  // namespace tobrin
