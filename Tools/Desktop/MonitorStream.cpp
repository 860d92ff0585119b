#include "MonitorStream.h"

#include <cerrno>
#include <span>
#include <utility>

#include "Clock.h"

namespace tobrin::testing {

MonitorStream::MonitorStream(pw_main_loop* loop, std::string sink, BlockRing& ring)
    : sink_(std::move(sink)), ring_(ring), context_(realTimeContext(loop)) {}

MonitorStream::~MonitorStream() {
  disconnect();
}

bool MonitorStream::ensureConnected() {
  if (core_ && !lost_) return true;
  disconnect();
  core_.reset(pw_context_connect(context_.get(), nullptr, 0));
  if (!core_) return false;
  static const pw_core_events events = [] {
    pw_core_events made{};
    made.version = PW_VERSION_CORE_EVENTS;
    made.error = coreError;
    return made;
  }();
  pw_core_add_listener(core_.get(), &coreListener_, &events, this);
  return connectStream();
}

bool MonitorStream::connectStream() {
  pw_properties* properties =
      pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Capture",
                        PW_KEY_STREAM_CAPTURE_SINK, "true",
                        // Not a program that listens to the user: it looks at what is played.
                        PW_KEY_STREAM_MONITOR, "true", PW_KEY_NODE_NAME, "record-sink", nullptr);
  if (!sink_.empty()) pw_properties_set(properties, PW_KEY_TARGET_OBJECT, sink_.c_str());
  stream_.reset(pw_stream_new(core_.get(), "record-sink", properties));
  if (!stream_) return false;
  running_.store(stream_.get(), std::memory_order_release);
  static const pw_stream_events events = [] {
    pw_stream_events made{};
    made.version = PW_VERSION_STREAM_EVENTS;
    made.io_changed = ioChanged;
    made.process = process;
    return made;
  }();
  pw_stream_add_listener(stream_.get(), &streamListener_, &events, this);
  return connectStereo(stream_.get(), PW_DIRECTION_INPUT);
}

void MonitorStream::disconnect() {
  if (stream_) spa_hook_remove(&streamListener_);
  stream_.reset();
  if (core_) spa_hook_remove(&coreListener_);
  core_.reset();
  position_.store(nullptr, std::memory_order_relaxed);
  lost_ = false;
}

void MonitorStream::coreError(void* self, uint32_t id, int, int result, const char*) {
  if (id == PW_ID_CORE && result == -EPIPE) static_cast<MonitorStream*>(self)->lost_ = true;
}

void MonitorStream::ioChanged(void* self, uint32_t id, void* area, uint32_t) {
  if (id != SPA_IO_Position) return;
  // Pairs with the load in startOfCaptured().
  static_cast<MonitorStream*>(self)->position_.store(static_cast<spa_io_position*>(area),
                                                     std::memory_order_release);
}

int64_t MonitorStream::startOfCaptured(size_t frames) noexcept {
  const spa_io_position* position = position_.load(std::memory_order_acquire);
  if (position == nullptr) return monotonicNs();
  const spa_io_clock& clock = position->clock;
  const auto nowNs = static_cast<int64_t>(clock.nsec);
  const bool continuous =
      lastDuration_ == frames && lastPosition_ + lastDuration_ == clock.position;
  const int64_t startNs =
      continuous ? lastNs_
                 : nowNs - static_cast<int64_t>(static_cast<double>(frames) * 1e9 / sampleRate);
  lastPosition_ = clock.position;
  lastDuration_ = clock.duration;
  lastNs_ = nowNs;
  return startNs;
}

void MonitorStream::process(void* self) {
  auto& stream = *static_cast<MonitorStream*>(self);
  pw_stream* running = stream.running_.load(std::memory_order_acquire);
  pw_buffer* buffer = pw_stream_dequeue_buffer(running);
  if (buffer == nullptr) return;
  const spa_data& data = buffer->buffer->datas[0];
  if (data.data != nullptr) {
    const auto* bytes = static_cast<const uint8_t*>(data.data) + data.chunk->offset;
    const size_t frames = data.chunk->size / (channelCount * sizeof(float));
    const std::span samples(reinterpret_cast<const float*>(bytes), frames * channelCount);
    stream.ring_.push(stream.startOfCaptured(frames), samples);
  }
  pw_stream_queue_buffer(running, buffer);
}

}  // namespace tobrin::testing
