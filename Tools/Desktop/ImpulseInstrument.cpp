// impulse-instrument: the least an instrument can do. Every key press of the X server becomes a
// single sample in the very next buffer of a stream with a cycle of 256 frames; nothing else is
// ever computed. What it needs from press to sound is what the X server and the sound server need,
// so it is the limit of any instrument. Prints "ready" once it plays, and, when it is interrupted,
// "impulse NS" with the time of each sample.
#include <pipewire/pipewire.h>
#include <sys/socket.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Clock.h"
#include "PipeWireHandles.h"

namespace {

using tobrin::testing::channelCount;
using tobrin::testing::PipeWireHandle;

constexpr float impulse = 0.5F;
constexpr size_t mostImpulses = 100'000;

/// Listens to raw key presses and notes each in `struck`.
class RawKeys final {
 public:
  explicit RawKeys(std::atomic<bool>& struck)
      : struck_(struck), connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("no X server");
    free(xcb_input_xi_query_version_reply(connection_,
                                          xcb_input_xi_query_version(connection_, 2, 2), nullptr));
    struct {
      xcb_input_event_mask_t head;
      uint32_t mask;
    } const selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS};
    xcb_input_xi_select_events(connection_,
                               xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root, 1,
                               &selection.head);
    free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    thread_ = std::thread([this] { listen(); });
  }
  ~RawKeys() {
    shutdown();
    thread_.join();
    xcb_disconnect(connection_);
  }
  RawKeys(const RawKeys&) = delete;
  RawKeys& operator=(const RawKeys&) = delete;

 private:
  void listen() {
    tobrin::testing::tryRealTime(50);
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection_)) {
      const bool press =
          (event->response_type & 0x7f) == XCB_GE_GENERIC &&
          reinterpret_cast<xcb_ge_generic_event_t*>(event)->event_type == XCB_INPUT_RAW_KEY_PRESS;
      if (press) struck_.store(true, std::memory_order_release);
      free(event);
    }
  }
  void shutdown() const { ::shutdown(xcb_get_file_descriptor(connection_), SHUT_RDWR); }

  std::atomic<bool>& struck_;
  xcb_connection_t* connection_;
  std::thread thread_;
};

class ImpulseStream final {
 public:
  ImpulseStream()
      : loop_(pw_main_loop_new(nullptr)), context_(tobrin::testing::realTimeContext(loop_.get())) {
    impulses_.reserve(mostImpulses);
    core_.reset(pw_context_connect(context_.get(), nullptr, 0));
    if (!core_) throw std::runtime_error("no sound server");
    for (const int number : {SIGINT, SIGTERM})
      pw_loop_add_signal(
          pw_main_loop_get_loop(loop_.get()), number,
          [](void* self, int) { pw_main_loop_quit(of(self).loop_.get()); }, this);
    connect();
  }
  ~ImpulseStream() { stop(); }
  ImpulseStream(const ImpulseStream&) = delete;
  ImpulseStream& operator=(const ImpulseStream&) = delete;

  std::atomic<bool>& struck() { return struck_; }
  void run() { pw_main_loop_run(loop_.get()); }

  void stop() {
    if (stream_) spa_hook_remove(&listener_);
    stream_.reset();
  }

  /// After stop(), with the real-time thread gone.
  void print() const {
    for (const uint64_t ns : impulses_)
      std::printf("impulse %llu\n", static_cast<unsigned long long>(ns));
  }

 private:
  static ImpulseStream& of(void* self) { return *static_cast<ImpulseStream*>(self); }

  void connect() {
    stream_.reset(
        pw_stream_new(core_.get(), "impulse-instrument",
                      pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY,
                                        "Playback", PW_KEY_NODE_LATENCY, "256/48000", nullptr)));
    static const pw_stream_events events = [] {
      pw_stream_events made{};
      made.version = PW_VERSION_STREAM_EVENTS;
      made.state_changed = stateChanged;
      made.io_changed = ioChanged;
      made.process = process;
      return made;
    }();
    running_.store(stream_.get(), std::memory_order_release);
    pw_stream_add_listener(stream_.get(), &listener_, &events, this);
    if (!tobrin::testing::connectStereo(stream_.get(), PW_DIRECTION_OUTPUT))
      throw std::runtime_error("no stream");
  }

  static void stateChanged(void* self, pw_stream_state, pw_stream_state state, const char*) {
    if (state != PW_STREAM_STATE_STREAMING || of(self).announced_) return;
    of(self).announced_ = true;
    (void)std::puts("ready");
    (void)std::fflush(stdout);
  }
  static void ioChanged(void* self, uint32_t id, void* area, uint32_t) {
    if (id == SPA_IO_Position)
      of(self).position_.store(static_cast<spa_io_position*>(area), std::memory_order_release);
  }
  static void process(void* self) {
    ImpulseStream& stream = of(self);
    pw_stream* running = stream.running_.load(std::memory_order_acquire);
    pw_buffer* buffer = pw_stream_dequeue_buffer(running);
    if (buffer == nullptr) return;
    spa_data& data = buffer->buffer->datas[0];
    const uint64_t room = data.maxsize / (channelCount * sizeof(float));
    const uint64_t frames = buffer->requested == 0 ? room : std::min(buffer->requested, room);
    stream.render(static_cast<float*>(data.data), frames);
    *data.chunk = {0, static_cast<uint32_t>(frames * channelCount * sizeof(float)),
                   channelCount * sizeof(float), 0};
    pw_stream_queue_buffer(running, buffer);
  }

  void render(float* samples, uint64_t frames) noexcept {
    std::fill(samples, samples + frames * channelCount, 0.0F);
    if (frames == 0 || !struck_.exchange(false, std::memory_order_acquire)) return;
    samples[0] = samples[1] = impulse;
    const spa_io_position* position = position_.load(std::memory_order_acquire);
    if (position != nullptr && impulses_.size() < mostImpulses)
      impulses_.push_back(position->clock.nsec);
  }

  PipeWireHandle<pw_main_loop> loop_;
  PipeWireHandle<pw_context> context_;
  PipeWireHandle<pw_core> core_;
  PipeWireHandle<pw_stream> stream_;
  spa_hook listener_{};
  bool announced_ = false;
  std::atomic<pw_stream*> running_{
      nullptr};  // what stream_ owns, also while that is being destroyed
  std::atomic<bool> struck_{false};
  std::atomic<spa_io_position*> position_{nullptr};
  std::vector<uint64_t>
      impulses_;  // real-time thread while the stream lives; never grows beyond its reserve
};

}  // namespace

int main() {
  tobrin::testing::blockEndingSignals();
  pw_init(nullptr, nullptr);
  try {
    ImpulseStream stream;
    {
      const RawKeys keys(stream.struck());
      stream.run();
    }
    stream.stop();
    stream.print();
  } catch (const std::exception& error) {
    std::cerr << "impulse-instrument: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
