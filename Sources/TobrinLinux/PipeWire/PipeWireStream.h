/// One playback stream on a connection: asks the server for 48 kHz float stereo in blocks of 256
/// frames and has them rendered on the data thread. The server moves it along with the user's
/// default device. The caller holds the loop's lock. Thread: any.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Engine/AudioDevice.h"

struct pw_core;
struct pw_stream;

namespace tobrin {

/// What the data thread reads. Set up before the first stream; only `isOpen` changes later.
struct RenderGate {
  AudioCallbacks callbacks;
  std::atomic<bool> isOpen = false;  // closed: blocks are left empty and nothing is called
};

class PipeWireStream final {
 public:
  enum class State { connecting, idle, streaming, failed };

  /// Connects at once and active. `gate` outlives the stream. `stateChanged` is called on the loop
  /// thread and must not destroy the stream. Throws std::runtime_error where the library refuses.
  PipeWireStream(pw_core* core, const RenderGate& gate, std::function<void()> stateChanged);
  ~PipeWireStream();
  PipeWireStream(const PipeWireStream&) = delete;
  PipeWireStream& operator=(const PipeWireStream&) = delete;

  /// An inactive stream lets its device fall asleep, and gets no callbacks once the server has
  /// taken notice.
  void setActive(bool active);

  [[nodiscard]] State state() const { return state_; }

  /// Whether it ever played, that is, had a device to play on.
  [[nodiscard]] bool hasStreamed() const { return hasStreamed_; }

  /// The server's words when the state is `failed`.
  [[nodiscard]] const std::string& error() const { return error_; }

  /// The stream's id among the server's objects.
  [[nodiscard]] uint32_t nodeId() const;

 private:
  struct Hooks;
  static void process(void* self);
  static void changed(void* self, int from, int to, const char* error);

  const RenderGate& gate_;                    // fixed after construction
  const std::function<void()> stateChanged_;  // fixed after construction
  std::unique_ptr<Hooks> hooks_;              // fixed after construction
  pw_stream* stream_ = nullptr;               // fixed after construction
  State state_ = State::connecting;
  bool hasStreamed_ = false;
  std::string error_;
};

}  // namespace tobrin
