/// Plays through a PipeWire server, on the user's default device or a chosen one, and goes on
/// playing by itself when the server comes back. Thread: any.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "Engine/AudioDevice.h"

struct pw_core;

namespace tobrin {

class AsioQueue;
class PipeWireConnection;
class PipeWireGraphWatch;
class PipeWireLoop;
class PlaybackStream;
class PipeWireTimer;
struct RenderGate;

class PipeWireOutput final : public AudioDevice {
 public:
  /// Does not connect yet. The loop may be shared with other users of the server.
  explicit PipeWireOutput(std::shared_ptr<PipeWireLoop> loop);
  ~PipeWireOutput() override;
  PipeWireOutput(const PipeWireOutput&) = delete;
  PipeWireOutput& operator=(const PipeWireOutput&) = delete;

  void setCallbacks(AudioCallbacks callbacks) override;
  void choose(const std::string& id) override;
  void findOutputs() override;
  /// Waits up to half a second where the stream has to be made first; a paused one is resumed
  /// without waiting.
  bool start() override;
  void pause() override;
  [[nodiscard]] bool isRunning() const override;
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override;

  /// Whether a server that has an output device is there, or likely to return: false before one
  /// has answered, and once one has had no device for some seconds. Thread: any.
  [[nodiscard]] bool expectsDevice() const {
    return expectsDevice_.load(std::memory_order_relaxed);
  }

 private:
  void connected(pw_core* core);
  void makeStream(pw_core* core);
  void watchLink();
  void watchDevice();
  void linkIsMissing();
  void deviceIsMissing();
  void lost();
  void streamChanged();
  void graphChanged();
  void tellChoice();
  void notifyChanged();

  const std::shared_ptr<PipeWireLoop> loop_;        // fixed after construction
  const std::unique_ptr<RenderGate> gate_;          // atomic where it changes
  std::unique_ptr<PipeWireConnection> connection_;  // fixed after construction
  // Calls `changed` off the loop thread: what it leads to may wait for the loop.
  std::unique_ptr<AsioQueue> notifier_;  // fixed after construction
  std::atomic<bool> isClosing_ = false;
  std::atomic<bool> isStreaming_ = false;    // written under the loop's lock
  std::atomic<bool> expectsDevice_ = false;  // written under the loop's lock

  // Guarded by the loop's lock.
  std::unique_ptr<PlaybackStream> stream_;
  std::unique_ptr<PipeWireGraphWatch> watch_;  // null while there is no connection
  std::optional<std::string> chosen_;          // a node's name, or empty; absent: nothing to tell
  bool isChoiceTold_ = false;                  // the policy knows it of this stream
  SoundOutputs outputs_;
  std::unique_ptr<PipeWireTimer> linkWatch_;    // runs while the stream should play and does not
  std::unique_ptr<PipeWireTimer> deviceWatch_;  // so does this, while a server answers
  std::chrono::milliseconds linkPatience_;
  bool hasMetServer_ = false;
  bool isRetry_ = false;  // the next connection is to a server that refused the stream before
  bool isWanted_ = false;
  bool startIsAnswered_ = false;  // the owner knows that the stream runs or is about to
  std::string problem_;
};

}  // namespace tobrin
