/// The microphone watch's view of a PulseAudio server: state alone, no sound is ever asked for.
/// Thread: mic.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

#include "Mic/MicSource.h"

namespace tobrin {

class PulseMicSource final : public MicSource {
 public:
  /// Does not connect yet.
  PulseMicSource();
  ~PulseMicSource() override;
  PulseMicSource(const PulseMicSource&) = delete;
  PulseMicSource& operator=(const PulseMicSource&) = delete;

  /// No server is started for this; one that comes later is found within five seconds.
  void start(std::function<void()> changed) override;
  void stop() override;
  /// Waits up to half a second for a server that has just been asked.
  [[nodiscard]] MicActivity read() override;

 private:
  class Connection;

  void keep(MicActivity activity);

  std::function<void()> changed_;           // fixed while there is a connection
  std::unique_ptr<Connection> connection_;  // the owner's thread; null while stopped

  std::mutex mutex_;  // a plain one, for the condition
  std::condition_variable settled_;
  // guarded by mutex_
  MicActivity activity_;  // as the server reports it; empty while none answers
  bool isSettled_ = false;
};

}  // namespace tobrin
