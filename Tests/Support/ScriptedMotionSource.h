/// A motion source that a test drives by hand: what `send` is given reaches the sink of the sensor
/// that runs the source, on the sensor's thread.
#pragma once

#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "Force/MotionReport.h"
#include "Force/MotionSource.h"

namespace tobrin::testing {

class ScriptedMotionSource final : public MotionSource {
 public:
  /// What a test keeps of a source that the sensor owns.
  struct Controls {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::pair<MotionReport, uint64_t>> waiting;
    bool interrupted = false;
    bool ended = false;  ///< the stream ends by itself
    bool refuse = false;
    int opened = 0;
    int closed = 0;

    void send(const Acceleration& acceleration, uint64_t time) {
      const std::lock_guard lock(mutex);
      waiting.emplace_back(encodeMotionReport(acceleration), time);
      changed.notify_all();
    }
    void end() {
      const std::lock_guard lock(mutex);
      ended = true;
      changed.notify_all();
    }
  };

  explicit ScriptedMotionSource(Controls& controls) : controls_(controls) {}

  bool open() override {
    const std::lock_guard lock(controls_.mutex);
    controls_.interrupted = controls_.ended = false;
    if (controls_.refuse) return false;
    ++controls_.opened;
    return true;
  }
  void run(const Sink& sink) override {
    std::unique_lock lock(controls_.mutex);
    while (!controls_.interrupted && !controls_.ended) {
      for (const auto& [report, time] : std::exchange(controls_.waiting, {}))
        sink(report, time);
      controls_.changed.wait(lock, [&] {
        return controls_.interrupted || controls_.ended || !controls_.waiting.empty();
      });
    }
  }
  void close() override {
    const std::lock_guard lock(controls_.mutex);
    ++controls_.closed;
  }
  void interrupt() override {
    const std::lock_guard lock(controls_.mutex);
    controls_.interrupted = true;
    controls_.changed.notify_all();
  }
  [[nodiscard]] std::string problem() const override { return "the test says no"; }
  [[nodiscard]] std::string description() const override { return "a scripted source"; }

 private:
  Controls& controls_;
};

}  // namespace tobrin::testing
