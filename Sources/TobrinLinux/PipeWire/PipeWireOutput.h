/// Plays through a PipeWire server, on the user's default device, and takes up playing again by
/// itself after the server was gone.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "Engine/AudioDevice.h"

struct pw_core;

namespace tobrin {

class AsioQueue;
class PipeWireConnection;
class PipeWireLoop;
class PipeWireStream;
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
  /// Waits up to half a second where the stream has to be made first; a paused one is resumed
  /// without waiting.
  bool start() override;
  void pause() override;
  [[nodiscard]] bool isRunning() const override;
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override;

  /// Whether a server ever answered. Thread: any.
  [[nodiscard]] bool hasMetServer() const { return hasMetServer_.load(std::memory_order_relaxed); }

 private:
  void connected(pw_core* core);
  void makeStream(pw_core* core);
  void watchLink();
  void linkIsMissing();
  void lost();
  void streamChanged();
  void notifyChanged();

  const std::shared_ptr<PipeWireLoop> loop_;        // fixed after construction
  const std::unique_ptr<RenderGate> gate_;          // atomic where it changes
  std::unique_ptr<PipeWireConnection> connection_;  // fixed after construction
  // Calls `changed` off the loop thread: what it leads to may wait for the loop.
  std::unique_ptr<AsioQueue> notifier_;  // fixed after construction
  std::atomic<bool> isClosing_ = false;
  std::atomic<bool> isStreaming_ = false;  // written under the loop's lock
  std::atomic<bool> hasMetServer_ = false;

  // Guarded by the loop's lock.
  std::unique_ptr<PipeWireStream> stream_;
  std::unique_ptr<PipeWireTimer> linkWatch_;  // runs while the stream should play and does not
  std::chrono::milliseconds linkPatience_;
  bool isWanted_ = false;
  bool startIsAnswered_ = false;  // the owner knows that the stream runs or is about to
  std::string problem_;
};

}  // namespace tobrin
