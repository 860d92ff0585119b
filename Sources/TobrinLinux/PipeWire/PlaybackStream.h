/// The stream that plays: asks the server for blocks of 256 frames and has them rendered on the
/// data thread. The server moves it along with the user's default device, unless it has a target.
/// The caller holds the loop's lock. Thread: any.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Engine/AudioDevice.h"
#include "PipeWire/PipeWireStream.h"

namespace tobrin {

/// What the data thread reads. Set up before the first stream; only `isOpen` changes later.
struct RenderGate {
  AudioCallbacks callbacks;
  std::atomic<bool> isOpen = false;  // closed: blocks are left empty and nothing is called
};

class PlaybackStream final {
 public:
  using State = PipeWireStream::State;

  /// Connects at once and active, to the node with the name `target`, or to the default device
  /// where that is empty or no node has it. `gate` outlives the stream. `stateChanged` is called on
  /// the loop thread and must not destroy the stream. Throws std::runtime_error where the library
  /// refuses.
  PlaybackStream(pw_core* core, const RenderGate& gate, const std::string& target,
                 std::function<void()> stateChanged);

  /// An inactive stream lets its device fall asleep, and gets no callbacks once the server has
  /// taken notice.
  void setActive(bool active);

  [[nodiscard]] State state() const { return stream_.state(); }

  /// Whether it ever played, that is, had a device to play on.
  [[nodiscard]] bool hasStreamed() const { return hasStreamed_; }

  [[nodiscard]] const std::string& error() const { return stream_.error(); }

  /// The stream's id among the server's objects; nothing while it is not known yet.
  [[nodiscard]] std::optional<uint32_t> nodeId() const;

 private:
  void changed();
  static void process(void* self, pw_stream* stream, pw_buffer& block);

  const RenderGate& gate_;                    // fixed after construction
  const std::function<void()> stateChanged_;  // fixed after construction
  bool isMade_ = false;                       // from then on `stream_` may be looked at
  bool hasStreamed_ = false;
  PipeWireStream stream_;
};

}  // namespace tobrin
