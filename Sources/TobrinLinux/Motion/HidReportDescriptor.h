/// Finds in a HID report descriptor the input report that carries 22-byte accelerations: that of a
/// top-level collection with usage page 0xFF00 and usage 3. Plain functions over bytes from a
/// device, so everything in them may be wrong. Thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace tobrin {

/// Where the 22 bytes are in what the kernel hands out.
struct HidMotionReport {
  uint8_t id = 0;         ///< the report's number; 0: the device numbers none
  std::size_t bytes = 0;  ///< length as read, with the number where there is one
  std::size_t skip = 0;   ///< bytes to leave out in front

  bool operator==(const HidMotionReport&) const = default;
};

/// The device's motion report, or nothing where it has none.
[[nodiscard]] std::optional<HidMotionReport> findMotionReport(std::span<const uint8_t> descriptor);

}  // namespace tobrin
