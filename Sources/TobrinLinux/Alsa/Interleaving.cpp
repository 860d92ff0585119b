#include "Alsa/Interleaving.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>

namespace tobrin {

namespace {

template <typename Sample>
Sample converted(float value) noexcept {
  if constexpr (std::is_same_v<Sample, float>) {
    return value;
  } else {
    // In double, which holds every 32-bit integer.
    constexpr double low = std::numeric_limits<Sample>::min();
    constexpr double high = std::numeric_limits<Sample>::max();
    return static_cast<Sample>(
        std::lrint(std::clamp(static_cast<double>(value) * -low, low, high)));
  }
}

template <typename Sample>
void interleaveAs(std::span<const float> left, std::span<const float> right,
                  std::byte* out) noexcept {
  for (std::size_t i = 0; i < left.size(); ++i) {
    const Sample frame[2] = {converted<Sample>(left[i]),
                             right.empty() ? Sample{} : converted<Sample>(right[i])};
    const std::size_t size = right.empty() ? sizeof(Sample) : sizeof frame;
    std::memcpy(out + i * size, frame, size);
  }
}

}  // namespace

void interleave(std::span<const float> left, std::span<const float> right, DeviceFormat format,
                std::byte* out) noexcept {
  assert(right.empty() || right.size() == left.size());
  switch (format) {
    case DeviceFormat::float32:
      return interleaveAs<float>(left, right, out);
    case DeviceFormat::int32:
      return interleaveAs<int32_t>(left, right, out);
    case DeviceFormat::int16:
      return interleaveAs<int16_t>(left, right, out);
  }
}

}  // namespace tobrin
