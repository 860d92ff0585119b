/// An accelerometer among the kernel's IIO devices: where it is, and how its counts become g.
/// Read from sysfs, below a root that a test may supply. Thread: any.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Force/MotionReport.h"

namespace tobrin {

struct IioPaths {
  std::filesystem::path sys = "/sys";
  std::filesystem::path dev = "/dev";
};

/// Counts of the three axes into g in the machine's own axes.
struct IioCalibration {
  struct Axis {
    double gPerCount = 0;
    double offset = 0;  ///< counts, added before scaling
  };
  std::array<Axis, 3> axes{};
  std::array<double, 9> mount = {1, 0, 0, 0, 1, 0, 0, 0, 1};  ///< rotation, row by row

  [[nodiscard]] Acceleration apply(const std::array<double, 3>& counts) const;
};

struct IioDevice {
  /// Where the sensor sits; it measures a keyboard's impacts best near it.
  enum class Place : uint8_t { keyboard, unknown, lid };

  std::filesystem::path folder;  ///< in sysfs
  std::filesystem::path node;
  std::string name;  ///< as the driver calls it
  Place place = Place::unknown;

  /// All accelerometers with three axes, the best first.
  static std::vector<IioDevice> findAll(const IioPaths& paths);

  /// "NAME (iio:deviceN)", for people.
  [[nodiscard]] std::string title() const;

  /// The file of an axis, for example attribute(0, "raw") for in_accel_x_raw.
  [[nodiscard]] std::filesystem::path axisFile(std::size_t axis, const std::string& what) const;

  /// Nothing, with a reason, where a scale is missing, 0 or no number.
  [[nodiscard]] std::optional<IioCalibration> calibration(std::string& reason) const;

  /// The file that holds the sampling frequency, or nothing.
  [[nodiscard]] std::optional<std::filesystem::path> rateFile() const;
};

}  // namespace tobrin
