#include "Motion/IioDevice.h"

#include <libudev.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string_view>

#include "Motion/Sysfs.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr double standardGravity = 9.80665;  // m/s2 in one g
constexpr std::array<const char*, 3> axisNames = {"x", "y", "z"};

bool hasThreeAxes(const fs::path& folder) {
  return std::all_of(axisNames.begin(), axisNames.end(), [&](const char* axis) {
    const std::string name = std::string("in_accel_") + axis;
    std::error_code none;
    return fs::exists(folder / (name + "_raw"), none) ||
           fs::exists(folder / "scan_elements" / (name + "_en"), none);
  });
}

std::optional<IioDevice::Place> placeNamed(std::string_view text) {
  const auto holds = [text](std::string_view word) {
    return text.find(word) != std::string_view::npos;
  };
  if (holds("base") || holds("keyboard")) return IioDevice::Place::keyboard;
  if (holds("lid") || holds("display") || holds("screen")) return IioDevice::Place::lid;
  return std::nullopt;
}

// What udev's hardware database says of devices whose drivers say nothing.
std::string placeByUdev(const fs::path& folder) {
  const std::unique_ptr<udev, decltype(&udev_unref)> context(udev_new(), &udev_unref);
  if (!context) return {};
  std::error_code error;
  const fs::path real = fs::canonical(folder, error);
  const std::unique_ptr<udev_device, decltype(&udev_device_unref)> device(
      udev_device_new_from_syspath(context.get(), real.c_str()), &udev_device_unref);
  if (!device) return {};
  const char* place = udev_device_get_property_value(device.get(), "ACCEL_LOCATION");
  return place != nullptr ? place : "";
}

IioDevice::Place placeOf(const fs::path& folder) {
  for (const char* attribute : {"label", "location"})
    if (const auto place = placeNamed(sysfs::read(folder / attribute).value_or(""))) return *place;
  return placeNamed(placeByUdev(folder)).value_or(IioDevice::Place::unknown);
}

// "a, b, c; d, e, f; g, h, i"; anything else leaves the axes as they are.
std::optional<std::array<double, 9>> parseMount(std::string_view text) {
  std::array<double, 9> mount{};
  double size = 0;
  for (std::size_t i = 0; i < mount.size(); ++i) {
    const std::size_t end = text.find_first_of(",;");
    if ((end == std::string_view::npos) != (i + 1 == mount.size())) return std::nullopt;
    std::string_view field = text.substr(0, end);
    field.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
    const auto number = sysfs::parseNumber(field);
    if (!number) return std::nullopt;
    mount[i] = *number;
    size += std::abs(*number);
    if (end != std::string_view::npos) text.remove_prefix(end + 1);
  }
  if (size == 0) return std::nullopt;
  return mount;
}

}  // namespace

Acceleration IioCalibration::apply(const std::array<double, 3>& counts) const {
  std::array<double, 3> g{};
  for (std::size_t i = 0; i < g.size(); ++i)
    g[i] = (counts[i] + axes[i].offset) * axes[i].gPerCount;
  const auto row = [&](std::size_t r) {
    return mount[3 * r] * g[0] + mount[3 * r + 1] * g[1] + mount[3 * r + 2] * g[2];
  };
  return {row(0), row(1), row(2)};
}

std::vector<IioDevice> IioDevice::findAll(const IioPaths& paths) {
  std::vector<IioDevice> found;
  for (const fs::path& folder : sysfs::entries(paths.sys / "bus" / "iio" / "devices")) {
    const std::string id = folder.filename();
    if (!id.starts_with("iio:device") || !hasThreeAxes(folder)) continue;
    found.push_back(
        {folder, paths.dev / id, sysfs::read(folder / "name").value_or(id), placeOf(folder)});
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const IioDevice& a, const IioDevice& b) { return a.place < b.place; });
  return found;
}

std::string IioDevice::title() const {
  return name + " (" + folder.filename().string() + ")";
}

fs::path IioDevice::axisFile(std::size_t axis, const std::string& what) const {
  return folder / (std::string("in_accel_") + axisNames[axis] + "_" + what);
}

std::optional<IioCalibration> IioDevice::calibration(std::string& reason) const {
  IioCalibration calibration;
  for (std::size_t i = 0; i < calibration.axes.size(); ++i) {
    const auto value = [&](const std::string& what) {
      const auto own = sysfs::readNumber(axisFile(i, what));
      return own ? own : sysfs::readNumber(folder / ("in_accel_" + what));
    };
    const double scale = value("scale").value_or(0);
    if (scale <= 0) {
      reason = title() + " does not say the size of its counts (in_accel_scale)";
      return std::nullopt;
    }
    calibration.axes[i] = {scale / standardGravity, value("offset").value_or(0)};
  }
  for (const char* attribute : {"in_accel_mount_matrix", "in_mount_matrix", "mount_matrix"})
    if (const auto mount = parseMount(sysfs::read(folder / attribute).value_or(""))) {
      calibration.mount = *mount;
      break;
    }
  return calibration;
}

std::optional<fs::path> IioDevice::rateFile() const {
  for (const char* attribute : {"in_accel_sampling_frequency", "sampling_frequency"}) {
    std::error_code none;
    if (fs::exists(folder / attribute, none)) return folder / attribute;
  }
  return std::nullopt;
}

}  // namespace tobrin
