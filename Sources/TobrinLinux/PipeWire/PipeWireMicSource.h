/// The microphone watch's view of a PipeWire server: state alone, no sound is ever asked for.
/// Thread: mic.
#pragma once

#include <functional>
#include <memory>

#include "Mic/MicSource.h"

struct pw_core;

namespace tobrin {

class PipeWireConnection;
class PipeWireGraphWatch;
class PipeWireLoop;

class PipeWireMicSource final : public MicSource {
 public:
  /// Does not connect yet. The loop may be shared with other users of the server.
  explicit PipeWireMicSource(std::shared_ptr<PipeWireLoop> loop);
  ~PipeWireMicSource() override;
  PipeWireMicSource(const PipeWireMicSource&) = delete;
  PipeWireMicSource& operator=(const PipeWireMicSource&) = delete;

  void start(std::function<void()> changed) override;
  void stop() override;
  /// Waits up to half a second for a server that has just been reached.
  [[nodiscard]] MicActivity read() override;

 private:
  void connected(pw_core* core);
  void lost();
  void updated();
  void keep(MicActivity activity);

  const std::shared_ptr<PipeWireLoop> loop_;        // fixed after construction
  std::unique_ptr<PipeWireConnection> connection_;  // fixed after construction

  // Guarded by the loop's lock.
  std::unique_ptr<PipeWireGraphWatch> watch_;
  std::function<void()> changed_;
  bool isStarted_ = false;
  MicActivity activity_;  // as the server reports it; empty while none answers
};

}  // namespace tobrin
