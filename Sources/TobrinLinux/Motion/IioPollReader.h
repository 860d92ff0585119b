/// Asks an IIO device for single readings, for where its buffer cannot be used. Slower and coarser
/// than the buffer, but needs only the right to read. Thread: sensor.
#pragma once

#include <array>
#include <memory>
#include <optional>

#include "Base/FileDescriptor.h"
#include "Motion/IioDevice.h"
#include "Motion/IioReader.h"

namespace tobrin {

class IioPollReader final : public IioReader {
 public:
  /// Nothing, with a reason, where the device does not answer.
  static std::unique_ptr<IioPollReader> prepare(const IioDevice& device,
                                                const IioCalibration& calibration,
                                                Refusal& refusal);

  [[nodiscard]] bool start(Refusal& refusal) override;
  [[nodiscard]] End stream(const MotionSource::Sink& sink, const WakeEvent& interrupt,
                           DeviceWatch& watch) override;
  [[nodiscard]] std::string description() const override;

 private:
  IioPollReader(IioDevice device, const IioCalibration& calibration,
                std::array<FileDescriptor, 3> axes);
  [[nodiscard]] std::optional<std::array<double, 3>> readCounts() const;

  // Fixed after construction.
  IioDevice device_;
  IioCalibration calibration_;
  std::array<FileDescriptor, 3> axes_;
};

}  // namespace tobrin
