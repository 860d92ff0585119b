/// Streams an accelerometer on its own thread, turns each report into one impact magnitude in g
/// without slow gravity and tilt, follows the noise floor, and answers which impact was the
/// strongest between two times. Queries hold the ring's lock; starts and stops run one at a time.
/// Thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Force/ForceRing.h"
#include "Force/MotionSource.h"

namespace tobrin {

class ForceSensor final {
 public:
  static constexpr std::size_t capacity = ForceRing::capacity;  ///< samples kept
  static constexpr const char* threadName = "Tobrin.ForceSensor";

  using Sample = ForceSample;

  /// `source` may be null: such a sensor never starts. `onThreadStart` runs first on every sensor
  /// thread, to name it and to ask for scheduling.
  explicit ForceSensor(std::unique_ptr<MotionSource> source,
                       std::function<void()> onThreadStart = nullptr);
  ~ForceSensor();
  ForceSensor(const ForceSensor&) = delete;
  ForceSensor& operator=(const ForceSensor&) = delete;

  /// `onChange` is called on the sensor thread each time a start has succeeded or failed, and when
  /// streaming has ended. To be set before the first start.
  void setOnChange(std::function<void()> onChange);

  /// Starts streaming if it does not; returns whether it streams.
  bool start();
  /// Starts streaming if it does not, without waiting for the device.
  void begin();
  /// Waits for the end of the start that `begin` began; returns whether it streams.
  bool awaitStart();
  /// Ends streaming; when it returns the sensor thread has ended. Ring and noise are kept. Waits
  /// for the end of a start.
  void stop();
  [[nodiscard]] bool isRunning() const;
  /// Whether a start has yet to end.
  [[nodiscard]] bool isStarting() const;
  [[nodiscard]] std::string problem() const;
  [[nodiscard]] std::string description() const;

  /// Takes one report. Reports of any length but 22 bytes are ignored. Never allocates. A test
  /// or a replay that never starts the sensor may call it from one thread. Thread: sensor.
  void ingest(std::span<const uint8_t> report, uint64_t time);

  /// The strongest sample with from <= time <= to; nothing where there is no sample.
  [[nodiscard]] std::optional<ForceWindow> window(uint64_t from, uint64_t to) const;

  /// All samples with from <= time <= to, oldest first.
  [[nodiscard]] std::vector<Sample> samples(uint64_t from, uint64_t to) const;

  [[nodiscard]] float noiseFloor() const;          ///< g
  [[nodiscard]] uint64_t lastSampleTime() const;   ///< host ticks
  [[nodiscard]] uint64_t reportsReceived() const;  ///< accepted since creation

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tobrin
