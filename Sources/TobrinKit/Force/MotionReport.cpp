#include "Force/MotionReport.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace tobrin {
namespace {

constexpr std::size_t firstAxis = 6;  // bytes 0 to 5 are the device's header
constexpr std::size_t axisBytes = 4;
constexpr double unitsPerG = 65536;

double decodeAxis(std::span<const uint8_t> report, std::size_t axis) {
  uint32_t bits = 0;
  for (std::size_t i = axisBytes; i-- > 0;)
    bits = bits << 8 | report[firstAxis + axis * axisBytes + i];
  return static_cast<double>(std::bit_cast<int32_t>(bits)) / unitsPerG;
}

void encodeAxis(MotionReport& report, std::size_t axis, double g) {
  using Limits = std::numeric_limits<int32_t>;
  const double units = std::isnan(g) ? 0.0 : std::round(g * unitsPerG);
  const double held =
      std::clamp(units, static_cast<double>(Limits::min()), static_cast<double>(Limits::max()));
  const auto bits = std::bit_cast<uint32_t>(static_cast<int32_t>(held));
  for (std::size_t i = 0; i < axisBytes; ++i)
    report[firstAxis + axis * axisBytes + i] = static_cast<uint8_t>(bits >> (8 * i));
}

}  // namespace

std::optional<Acceleration> decodeMotionReport(std::span<const uint8_t> report) {
  if (report.size() != MotionSource::reportBytes) return std::nullopt;
  return Acceleration{decodeAxis(report, 0), decodeAxis(report, 1), decodeAxis(report, 2)};
}

MotionReport encodeMotionReport(const Acceleration& acceleration) {
  MotionReport report{};
  encodeAxis(report, 0, acceleration.x);
  encodeAxis(report, 1, acceleration.y);
  encodeAxis(report, 2, acceleration.z);
  return report;
}

}  // namespace tobrin
