/// A stream of accelerometer reports as the force sensor takes them. Implemented once for each kind
/// of device. Thread: sensor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace tobrin {

class MotionSource {
 public:
  /// Length of the one report format taken: bytes 6, 10 and 14 start the x, y and z acceleration as
  /// little-endian signed 32-bit fixed point 16.16 in g; the rest is not used.
  static constexpr std::size_t reportBytes = 22;

  /// Receives one report and its time in `MachTime` ticks. Must not keep the span.
  using Sink = std::function<void(std::span<const uint8_t> report, uint64_t time)>;

  virtual ~MotionSource() = default;

  /// Opens the device and switches it on; false leaves the reason in `problem`.
  virtual bool open() = 0;

  /// Hands reports to `sink` until `interrupt`. If the device vanishes, waits for it and goes on.
  /// If another program takes it, returns with a `problem`, and may be tried again.
  virtual void run(const Sink& sink) = 0;

  /// Switches the device off and closes it.
  virtual void close() = 0;

  /// Ends a `run`, even one that has not begun yet. Thread: any.
  virtual void interrupt() = 0;

  /// Why `open` failed, or what keeps `run` waiting, in words; empty while all is well. Thread: the
  /// sensor's, or any after `open` has returned.
  [[nodiscard]] virtual std::string problem() const = 0;

  /// What the reports come from, for people.
  [[nodiscard]] virtual std::string description() const = 0;
};

}  // namespace tobrin
