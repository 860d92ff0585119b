/// IIO devices that are files only. Thread: any.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "Motion/IioDevice.h"
#include "Motion/Sysfs.h"
#include "Support/TempFolder.h"

namespace tobrin::testing {

/// A tree of files as the kernel shows IIO devices.
class FakeIio {
 public:
  void add(int number, const std::vector<std::pair<std::string, std::string>>& attributes,
           const char* scale = "0.000009806") {
    const std::string device = devices + "iio:device" + std::to_string(number) + "/";
    for (const char* axis : {"x", "y", "z"})
      folder_.write(device + "in_accel_" + axis + "_raw", "0\n");
    folder_.write(device + "name", "accel_" + std::to_string(number) + "\n");
    folder_.write(device + "in_accel_scale", scale);
    for (const auto& [name, text] : attributes)
      folder_.write(device + name, text);
  }
  void addBuffer(int number) {
    const std::string device = devices + "iio:device" + std::to_string(number) + "/";
    int index = 0;
    for (const char* name : {"in_accel_x", "in_accel_y", "in_accel_z", "in_timestamp"}) {
      const std::string element = device + "scan_elements/" + name;
      folder_.write(element + "_type", index < 3 ? "le:s16/16>>0" : "le:s64/64>>0");
      folder_.write(element + "_index", std::to_string(index++));
      folder_.write(element + "_en", "0\n");
    }
    folder_.write(device + "scan_elements/in_temp_en", "1\n");
    folder_.write(device + "buffer/enable", "0\n");
    folder_.write(device + "in_accel_sampling_frequency", "12\n");
    folder_.write("dev/iio:device" + std::to_string(number), "");
  }
  [[nodiscard]] std::string attribute(int number, const std::string& name) const {
    return *sysfs::read(folder_.path() / (devices + "iio:device" + std::to_string(number)) / name);
  }
  void write(const std::string& file, const std::string& text) const { folder_.write(file, text); }
  [[nodiscard]] IioPaths paths() const { return {folder_.path() / "sys", folder_.path() / "dev"}; }

  static inline const std::string devices = "sys/bus/iio/devices/";

 private:
  TempFolder folder_;
};

}  // namespace tobrin::testing
