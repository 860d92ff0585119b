#include "PipeWire/PlaybackStream.h"

#include <pipewire/pipewire.h>

#include <algorithm>
#include <utility>

#include "Threads/ThreadPreparation.h"

namespace tobrin {

namespace {

constexpr uint32_t blockFrames = 256;  // about 5.3 ms; also in the stream's properties

// No media role: streams of one role share their remembered volume (system sounds, a screen
// reader), and policies duck or mute by role while a call is on.
pw_properties* streamProperties(const std::string& target) {
  pw_properties* const properties = pw_properties_new(
      PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Playback", PW_KEY_MEDIA_NAME,
      "Keyboard sounds", PW_KEY_NODE_NAME, "tobrin", PW_KEY_NODE_DESCRIPTION, "Tobrin",
      PW_KEY_NODE_LATENCY, "256/48000", PW_KEY_APP_NAME, "Tobrin", PW_KEY_APP_ID, "app.tobrin",
      PW_KEY_APP_ICON_NAME, "tobrin", nullptr);
  if (!target.empty()) pw_properties_set(properties, PW_KEY_TARGET_OBJECT, target.c_str());
  return properties;
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

PlaybackStream::PlaybackStream(pw_core* core, const RenderGate& gate, const std::string& target,
                               std::function<void()> stateChanged)
    : gate_(gate),
      stateChanged_(std::move(stateChanged)),
      stream_(core, {.properties = streamProperties(target),
                     .process = process,
                     .context = this,
                     .stateChanged = [this] { changed(); }}) {
  isMade_ = true;
}

void PlaybackStream::setActive(bool active) {
  pw_stream_set_active(stream_.get(), active);
}

std::optional<uint32_t> PlaybackStream::nodeId() const {
  const uint32_t id = pw_stream_get_node_id(stream_.get());
  return id == PW_ID_ANY ? std::nullopt : std::optional(id);
}

void PlaybackStream::changed() {
  if (isMade_ && stream_.state() == State::streaming && !std::exchange(hasStreamed_, true))
    nameDataThread(stream_.get());
  stateChanged_();
}

void PlaybackStream::process(void* self, pw_stream* /*stream*/, pw_buffer& block) {
  const auto& gate = static_cast<const PlaybackStream*>(self)->gate_;
  spa_buffer& buffer = *block.buffer;
  auto* left = static_cast<float*>(buffer.datas[0].data);
  auto* right = buffer.n_datas > 1 ? static_cast<float*>(buffer.datas[1].data) : nullptr;
  const auto room = static_cast<uint64_t>(buffer.datas[0].maxsize / sizeof(float));
  const uint64_t wanted = block.requested != 0 ? block.requested : blockFrames;
  // The acquire pairs with the release that opens the gate and publishes the callbacks.
  const bool plays = left != nullptr && gate.isOpen.load(std::memory_order_acquire);
  const auto frames = plays ? static_cast<uint32_t>(std::min(wanted, room)) : 0U;
  if (plays) gate.callbacks.render(gate.callbacks.context, left, right, frames);
  for (uint32_t channel = 0; channel < buffer.n_datas; ++channel) {
    buffer.datas[channel].chunk->offset = 0;
    buffer.datas[channel].chunk->stride = sizeof(float);
    buffer.datas[channel].chunk->size = static_cast<uint32_t>(frames * sizeof(float));
  }
}

}  // namespace tobrin
