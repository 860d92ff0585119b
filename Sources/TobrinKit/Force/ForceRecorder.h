/// Records what a motion source sends and when keys go down, for a later replay. Of a key only its
/// group is kept. Samples and keys arrive on the sensor's and the key monitor's threads; all calls
/// come from one thread. Thread: any.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Base/Mutex.h"
#include "Force/ForceSensor.h"
#include "Force/KeyTrace.h"
#include "Force/MotionTrace.h"
#include "Input/KeyMonitor.h"

namespace tobrin {

class ForceRecorder final {
 public:
  struct Recorded {
    std::vector<MotionTrace::Sample> samples;  ///< in order of time
    std::vector<KeyTrace::KeyDown> keys;       ///< in order of time
  };

  /// Makes the key monitor that calls the handler.
  using Listen = std::function<std::unique_ptr<KeyMonitor>(KeyMonitor::Handler)>;

  ForceRecorder(std::unique_ptr<MotionSource> source, const Listen& listen,
                std::function<void()> onThreadStart = nullptr);
  ~ForceRecorder();
  ForceRecorder(const ForceRecorder&) = delete;
  ForceRecorder& operator=(const ForceRecorder&) = delete;

  /// Starts both; false leaves why in `problem`, and nothing running.
  bool start();
  void stop();
  [[nodiscard]] std::string problem() const { return problem_; }
  [[nodiscard]] std::string description() const { return sensor_.description(); }

  /// What has arrived since the last call.
  Recorded take();

  /// The key that stands for all of its group.
  static uint16_t representative(uint16_t code);

 private:
  class Tap;
  void addSample(std::span<const uint8_t> report, uint64_t time);
  void addKey(const KeyEvent& event);

  Mutex lock_;
  Recorded waiting_ TOBRIN_GUARDED_BY(lock_);
  uint64_t lastTime_ TOBRIN_GUARDED_BY(lock_) = 0;
  ForceSensor sensor_;
  std::unique_ptr<KeyMonitor> monitor_;
  std::string problem_;
};

}  // namespace tobrin
