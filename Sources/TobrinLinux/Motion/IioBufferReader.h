/// Reads the kernel's buffer of an IIO device: every sample once, with its time. Thread: sensor.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Force/SampleClock.h"
#include "Motion/IioDevice.h"
#include "Motion/IioLayout.h"
#include "Motion/IioReader.h"
#include "Motion/Sysfs.h"

namespace tobrin {

class IioBufferReader final : public IioReader {
 public:
  enum class Rate {
    highest,  ///< the highest that is of use
    asFound,  ///< what the device runs at
  };

  /// Opens the device without changing it; null, with a refusal, where it has no buffer, where
  /// another program reads it, or where this one may not.
  static std::unique_ptr<IioBufferReader> prepare(const IioDevice& device,
                                                  const IioCalibration& calibration, Rate rate,
                                                  Refusal& refusal);

  [[nodiscard]] bool start(Refusal& refusal) override;
  [[nodiscard]] End stream(const MotionSource::Sink& sink, const WakeEvent& interrupt,
                           DeviceWatch& watch) override;
  [[nodiscard]] std::string description() const override;

 private:
  IioBufferReader(IioDevice device, const IioCalibration& calibration, Rate rate,
                  FileDescriptor file, IioLayout layout);
  [[nodiscard]] bool chooseElements(Refusal& refusal);
  void chooseTrigger();
  [[nodiscard]] bool switchOn(Refusal& refusal);
  void pass(std::size_t frames, uint64_t readTime, const MotionSource::Sink& sink);

  // Fixed after construction.
  IioDevice device_;
  IioCalibration calibration_;
  Rate rate_;
  FileDescriptor file_;
  IioLayout layout_;
  // Sensor thread.
  std::vector<uint8_t> bytes_;
  SampleClock clock_;
  std::optional<double> hz_;
  AttributeChanges changes_;  // last: restored before the file closes
};

}  // namespace tobrin
