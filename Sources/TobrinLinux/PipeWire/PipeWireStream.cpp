#include "PipeWire/PipeWireStream.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "Threads/ThreadPreparation.h"

namespace tobrin {

namespace {

constexpr uint32_t channelCount = 2;
constexpr uint32_t sampleRate = 48000;
constexpr uint32_t blockFrames = 256;  // about 5.3 ms; also in the stream's properties

// No media role: streams of one role share their remembered volume (system sounds, a screen
// reader), and policies duck or mute by role while a call is on.
pw_properties* streamProperties() {
  return pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Playback",
                           PW_KEY_MEDIA_NAME, "Keyboard sounds", PW_KEY_NODE_NAME, "tobrin",
                           PW_KEY_NODE_DESCRIPTION, "Tobrin", PW_KEY_NODE_LATENCY, "256/48000",
                           PW_KEY_APP_NAME, "Tobrin", PW_KEY_APP_ID, "app.tobrin",
                           PW_KEY_APP_ICON_NAME, "tobrin", nullptr);
}

const spa_pod* stereoFloat(spa_pod_builder& builder) {
  spa_audio_info_raw info{};
  info.format = SPA_AUDIO_FORMAT_F32P;
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

int nameThread(spa_loop* /*loop*/, bool /*async*/, uint32_t /*sequence*/, const void* /*data*/,
               size_t /*size*/, void* /*context*/) {
  nameThisThread("Tobrin.Render");
  return 0;
}

/// Names the thread that plays the stream. The library may start it no earlier than the stream is
/// to play, and would name its caller before.
void nameDataThread(pw_stream* stream) {
  pw_context* const context = pw_core_get_context(pw_stream_get_core(stream));
  pw_data_loop_invoke(pw_context_get_data_loop(context), nameThread, 0, nullptr, 0, false, nullptr);
}

}  // namespace

struct PipeWireStream::Hooks {
  spa_hook listener{};
  pw_stream_events events{};
};

PipeWireStream::PipeWireStream(pw_core* core, const RenderGate& gate,
                               std::function<void()> stateChanged)
    : gate_(gate), stateChanged_(std::move(stateChanged)), hooks_(std::make_unique<Hooks>()) {
  stream_ = pw_stream_new(core, "Tobrin", streamProperties());
  if (stream_ == nullptr) {
    throw std::runtime_error("PipeWire makes no stream (" + std::generic_category().message(errno) +
                             ")");
  }
  hooks_->events.version = PW_VERSION_STREAM_EVENTS;
  hooks_->events.process = process;
  hooks_->events.state_changed = [](void* self, pw_stream_state from, pw_stream_state to,
                                    const char* error) { changed(self, from, to, error); };
  pw_stream_add_listener(stream_, &hooks_->listener, &hooks_->events, this);

  std::array<uint8_t, 512> bytes{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, bytes.data(), bytes.size());
  const spa_pod* format = stereoFloat(builder);
  const int flags =
      PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS;
  const int result = pw_stream_connect(stream_, PW_DIRECTION_OUTPUT, PW_ID_ANY,
                                       static_cast<pw_stream_flags>(flags), &format, 1);
  if (result < 0) {
    pw_stream_destroy(stream_);
    throw std::runtime_error("PipeWire connects no stream (" +
                             std::generic_category().message(-result) + ")");
  }
}

PipeWireStream::~PipeWireStream() {
  spa_hook_remove(&hooks_->listener);
  pw_stream_destroy(stream_);
}

void PipeWireStream::setActive(bool active) {
  pw_stream_set_active(stream_, active);
}

uint32_t PipeWireStream::nodeId() const {
  return pw_stream_get_node_id(stream_);
}

void PipeWireStream::changed(void* self, int /*from*/, int to, const char* error) {
  auto& stream = *static_cast<PipeWireStream*>(self);
  stream.state_ = asState(to);
  if (stream.state_ == State::streaming && !std::exchange(stream.hasStreamed_, true))
    nameDataThread(stream.stream_);
  if (error != nullptr) stream.error_ = error;
  stream.stateChanged_();
}

void PipeWireStream::process(void* self) {
  const auto& stream = *static_cast<const PipeWireStream*>(self);
  pw_buffer* queued = pw_stream_dequeue_buffer(stream.stream_);
  if (queued == nullptr) return;
  spa_buffer& buffer = *queued->buffer;
  auto* left = static_cast<float*>(buffer.datas[0].data);
  auto* right = buffer.n_datas > 1 ? static_cast<float*>(buffer.datas[1].data) : nullptr;
  const auto room = static_cast<uint64_t>(buffer.datas[0].maxsize / sizeof(float));
  const uint64_t wanted = queued->requested != 0 ? queued->requested : blockFrames;
  // The acquire pairs with the release that opens the gate and publishes the callbacks.
  const bool plays = left != nullptr && stream.gate_.isOpen.load(std::memory_order_acquire);
  const auto frames = plays ? static_cast<uint32_t>(std::min(wanted, room)) : 0U;
  if (plays) stream.gate_.callbacks.render(stream.gate_.callbacks.context, left, right, frames);
  for (uint32_t channel = 0; channel < buffer.n_datas; ++channel) {
    buffer.datas[channel].chunk->offset = 0;
    buffer.datas[channel].chunk->stride = sizeof(float);
    buffer.datas[channel].chunk->size = static_cast<uint32_t>(frames * sizeof(float));
  }
  pw_stream_queue_buffer(stream.stream_, queued);
}

}  // namespace tobrin
