/// Turns channels of floats into the interleaved samples that a device takes. Thread: render.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tobrin {

enum class DeviceFormat { float32, int32, int16 };

constexpr std::size_t bytesPerSample(DeviceFormat format) {
  return format == DeviceFormat::int16 ? 2 : 4;
}

/// Writes `left` and `right`, of equal length, or `left` alone where `right` is empty, to `out` in
/// the machine's byte order. Integers are rounded to the nearest and limited to their range.
/// `out` holds length x channels samples. Real-time safe.
void interleave(std::span<const float> left, std::span<const float> right, DeviceFormat format,
                std::byte* out) noexcept;

}  // namespace tobrin
