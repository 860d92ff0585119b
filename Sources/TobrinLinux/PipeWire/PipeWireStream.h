/// One stream of 48 kHz float stereo on a connection, of sound to play or to record. The caller
/// holds the loop's lock. Thread: any.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct pw_buffer;
struct pw_core;
struct pw_properties;
struct pw_stream;

namespace tobrin {

class PipeWireStream final {
 public:
  enum class State { connecting, idle, streaming, failed };
  enum class Direction { play, record };
  enum class Layout { planar, interleaved };

  struct Role {
    Direction direction = Direction::play;
    Layout layout = Layout::planar;
    pw_properties* properties = nullptr;  ///< the stream takes them over
    /// Fills or reads a block, which is queued again afterwards. Thread: render.
    void (*process)(void* context, pw_stream* stream, pw_buffer& block) = nullptr;
    void* context = nullptr;
    /// Called on the loop thread after each change; must not destroy the stream.
    std::function<void()> stateChanged;
  };

  /// Connects at once and active. Throws std::runtime_error where the library refuses.
  PipeWireStream(pw_core* core, Role role);
  ~PipeWireStream();
  PipeWireStream(const PipeWireStream&) = delete;
  PipeWireStream& operator=(const PipeWireStream&) = delete;

  [[nodiscard]] pw_stream* get() const { return stream_; }
  [[nodiscard]] State state() const { return state_; }

  /// The server's words when the state is `failed`.
  [[nodiscard]] const std::string& error() const { return error_; }

 private:
  struct Hooks;
  void connect();
  static void process(void* self);
  static void changed(void* self, int from, int to, const char* error);

  const Role role_;                     // fixed after construction
  const std::unique_ptr<Hooks> hooks_;  // fixed after construction
  pw_stream* stream_ = nullptr;         // fixed after construction
  State state_ = State::connecting;
  std::string error_;
};

}  // namespace tobrin
