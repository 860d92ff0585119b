/// The one wire format of the accelerometer: 22 bytes, of which 6 to 17 hold three little-endian
/// signed numbers in 16.16 fixed point, in g. Plain functions. Thread: any.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "Force/MotionSource.h"

namespace tobrin {

/// Acceleration along the device's axes, in g.
struct Acceleration {
  double x = 0;
  double y = 0;
  double z = 0;

  bool operator==(const Acceleration&) const = default;
};

using MotionReport = std::array<uint8_t, MotionSource::reportBytes>;

/// The acceleration of a report, or nothing where its length is not 22 bytes.
[[nodiscard]] std::optional<Acceleration> decodeMotionReport(std::span<const uint8_t> report);

/// The report that says `acceleration`, rounded to 1/65536 g and held within +-32768 g; what is not
/// a number becomes 0.
[[nodiscard]] MotionReport encodeMotionReport(const Acceleration& acceleration);

}  // namespace tobrin
