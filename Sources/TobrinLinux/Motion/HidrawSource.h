/// A HID device that sends the 22-byte report itself, read through the kernel's raw interface and
/// stamped on arrival. Thread: sensor.
#pragma once

#include <filesystem>
#include <optional>

#include "Base/FileDescriptor.h"
#include "Force/MotionSource.h"
#include "Motion/HidReportDescriptor.h"
#include "Motion/SourceWords.h"
#include "System/WakeEvent.h"

namespace tobrin {

class HidrawSource final : public MotionSource {
 public:
  struct Paths {
    std::filesystem::path sys = "/sys";
    std::filesystem::path dev = "/dev";
  };

  /// One such device, found by its report descriptor without opening it.
  struct Device {
    std::filesystem::path node;
    HidMotionReport report;
  };
  static std::optional<Device> find(const Paths& paths);

  explicit HidrawSource(Paths paths);

  bool open() override;
  void run(const Sink& sink) override;
  void close() override;
  void interrupt() override;
  [[nodiscard]] std::string problem() const override { return words_.problem(); }
  [[nodiscard]] std::string description() const override { return words_.description(); }

 private:
  bool openDevice();
  void stream(const Sink& sink);
  void readAll(const Sink& sink);

  Paths paths_;  // fixed after construction
  WakeEvent interrupted_;
  SourceWords words_;
  // Sensor thread.
  Device device_;
  FileDescriptor file_;
};

}  // namespace tobrin
