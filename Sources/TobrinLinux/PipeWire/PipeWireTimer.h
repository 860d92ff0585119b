/// A one-shot timer on the PipeWire loop. The caller holds the loop's lock. Thread: any.
#pragma once

#include <chrono>
#include <functional>

struct spa_source;

namespace tobrin {

class PipeWireLoop;

class PipeWireTimer final {
 public:
  /// `fired` runs on the loop thread.
  PipeWireTimer(PipeWireLoop& loop, std::function<void()> fired);
  /// Takes the lock itself.
  ~PipeWireTimer();
  PipeWireTimer(const PipeWireTimer&) = delete;
  PipeWireTimer& operator=(const PipeWireTimer&) = delete;

  /// Fires once after `delay`; an earlier setting is dropped. No delay means in the loop's next
  /// round.
  void startIn(std::chrono::milliseconds delay);
  void stop();

 private:
  void set(std::chrono::nanoseconds delay);

  PipeWireLoop& loop_;
  const std::function<void()> fired_;
  spa_source* source_;
};

}  // namespace tobrin
