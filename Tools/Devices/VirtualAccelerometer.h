/// Accelerometers for tests against the kernel: one that its HID sensor driver turns into an IIO
/// device, and one that sends 22-byte vendor reports. At rest, 1 g down z, until it is struck.
/// Thread: any.
#pragma once

#include <atomic>
#include <cmath>
#include <numbers>
#include <optional>

#include "Force/MotionReport.h"
#include "Tools/Devices/UhidDevice.h"

namespace tobrin::testing {

class VirtualAccelerometer final {
 public:
  struct Sensor {
    double hz = 0;        ///< 0: as the driver asks
    unsigned bits = 32;   ///< of an axis, 16 or 32
    int exponent = -6;    ///< one count is ten to this power, in g
    bool stamps = false;  ///< a private counter in microseconds, with a private origin
  };
  struct Raw {
    uint8_t reportId = 0;
  };

  explicit VirtualAccelerometer(Sensor sensor) : sensor_(sensor) {
    device_.emplace("Sensor", sensorDescriptor(),
                    UhidDevice::Behaviour{
                        .input = [this](uint64_t time) { return sensorReport(time); },
                        .feature = [this] { return feature(); },
                        .setFeature = [this](const Bytes& bytes) { setFeature(bytes); },
                        .rate = [this](bool opened) { return opened ? sensorRate() : 0; },
                    });
  }

  explicit VirtualAccelerometer(Raw raw) {
    device_.emplace("Raw", rawDescriptor(raw),
                    UhidDevice::Behaviour{
                        .input = [this, raw](uint64_t time) { return rawReport(raw, time); },
                        .rate = [](bool opened) { return opened ? 1000.0 : 0.0; },
                    });
  }

  /// A burst of `g` g that starts now; returns its time.
  uint64_t strike(double g) {
    struckAt_ = UINT64_MAX;
    struckG_ = g;
    const uint64_t time = machNow();
    struckAt_ = time;
    return time;
  }

 private:
  using Bytes = UhidDevice::Bytes;

  static void append(Bytes& bytes, uint64_t number, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      bytes.push_back(static_cast<uint8_t>(number >> (8 * i)));
  }
  static void append(Bytes& bytes, std::initializer_list<int> more) {
    for (const int byte : more)
      bytes.push_back(static_cast<uint8_t>(byte));
  }

  [[nodiscard]] Acceleration at(uint64_t time) const {
    Acceleration g{0, 0, 1};
    const uint64_t struck = struckAt_;
    if (time < struck) return g;
    const double seconds = static_cast<double>(time - struck) / 1e9;
    g.z += struckG_ * std::exp(-seconds / 0.006) * std::cos(2 * std::numbers::pi * 110 * seconds);
    return g;
  }

  /// A choice among the usages `first` to `first` + 5 of the sensor page.
  static void appendChoice(Bytes& d, int usage, int first, int mainItem) {
    append(d, {0x0A, usage & 0xFF, usage >> 8, 0x15, 1, 0x25, 6, 0x75, 8, 0x95, 1, 0xA1, 2});
    for (int i = 0; i < 6; ++i)
      append(d, {0x0A, first + i, 0x08});
    append(d, {mainItem, 0x00, 0xC0});
  }
  /// Settings are unsigned: the kernel refuses to write signed ones of 32 bits.
  static void appendSetting(Bytes& d, int usage, int bits, int exponent) {
    append(d, {0x0A, usage & 0xFF, usage >> 8, 0x15, 0, 0x26, 0xFF, 0x7F});
    append(d, {0x75, bits, 0x95, 1, 0x55, exponent & 0x0F, 0xB1, 0x02});
  }
  static void appendReading(Bytes& d, int usage, unsigned bits, int exponent) {
    append(d, {0x0A, usage & 0xFF, usage >> 8});
    if (bits == 16)
      append(d, {0x16, 0x00, 0x80, 0x26, 0xFF, 0x7F});
    else
      append(d, {0x17, 0, 0, 0, 0x80, 0x27, 0xFF, 0xFF, 0xFF, 0x7F});
    append(d, {0x75, static_cast<int>(bits), 0x95, 1, 0x55, exponent & 0x0F, 0x81, 0x02});
  }

  [[nodiscard]] Bytes sensorDescriptor() const {
    constexpr int inputItem = 0x81;
    constexpr int featureItem = 0xB1;
    Bytes d;
    append(d, {0x05, 0x20, 0x09, 0x73, 0xA1, 0x00, 0x85, 0x01});  // sensor page, accelerometer
    appendChoice(d, 0x0316, 0x40, featureItem);                   // reporting state
    appendChoice(d, 0x0319, 0x50, featureItem);                   // power state
    appendSetting(d, 0x030E, 32, 0);                              // report interval, ms
    appendSetting(d, 0x1452, 16, -2);                             // sensitivity
    appendChoice(d, 0x0201, 0x00, inputItem);                     // sensor state
    appendChoice(d, 0x0202, 0x10, inputItem);                     // sensor event
    for (const int axis : {0x0453, 0x0454, 0x0455})
      appendReading(d, axis, sensor_.bits, sensor_.exponent);
    if (sensor_.stamps) appendReading(d, 0x0529, 64, -6);
    d.push_back(0xC0);
    return d;
  }

  static Bytes rawDescriptor(Raw raw) {
    Bytes d;
    append(d, {0x06, 0x00, 0xFF, 0x09, 0x03, 0xA1, 0x01});
    if (raw.reportId != 0) append(d, {0x85, raw.reportId});
    append(d, {0x09, 0x03, 0x15, 0, 0x26, 0xFF, 0, 0x75, 8, 0x95, 22, 0x81, 0x02, 0xC0});
    return d;
  }

  [[nodiscard]] Bytes sensorReport(uint64_t time) const {
    Bytes bytes = {1, 2, 3};
    const Acceleration g = at(time);
    for (const double axis : {g.x, g.y, g.z}) {
      const auto counts =
          static_cast<int64_t>(std::llround(axis * std::pow(10, -sensor_.exponent)));
      append(bytes, static_cast<uint64_t>(counts), sensor_.bits / 8);
    }
    if (sensor_.stamps) append(bytes, (time + 77'000'000'000) / 1000, 8);
    return bytes;
  }

  [[nodiscard]] Bytes rawReport(Raw raw, uint64_t time) const {
    const MotionReport report = encodeMotionReport(at(time));
    Bytes bytes;
    if (raw.reportId != 0) bytes.push_back(raw.reportId);
    for (const uint8_t byte : report)
      bytes.push_back(byte);
    return bytes;
  }

  [[nodiscard]] Bytes feature() const {
    Bytes bytes = {1, reporting_, power_};
    append(bytes, intervalMs_, 4);
    append(bytes, 0, 2);
    return bytes;
  }
  void setFeature(const Bytes& bytes) {
    if (bytes.size() < 7) return;
    reporting_ = bytes[1];
    power_ = bytes[2];
    intervalMs_ = static_cast<uint32_t>(bytes[3] | bytes[4] << 8 | bytes[5] << 16);
  }

  /// The driver counts choices from 1: reporting 2 is "all events", power 2 is "full".
  [[nodiscard]] double sensorRate() const {
    if (reporting_ != 2 || power_ != 2) return 0;
    if (sensor_.hz > 0) return sensor_.hz;
    return intervalMs_ > 0 ? 1000.0 / intervalMs_ : 0;
  }

  Sensor sensor_;
  std::atomic<uint8_t> reporting_ = 1;
  std::atomic<uint8_t> power_ = 1;
  std::atomic<uint32_t> intervalMs_ = 10;
  std::atomic<double> struckG_ = 0;
  std::atomic<uint64_t> struckAt_ = UINT64_MAX;
  std::optional<UhidDevice> device_;  // last: its threads use the rest
};

}  // namespace tobrin::testing
