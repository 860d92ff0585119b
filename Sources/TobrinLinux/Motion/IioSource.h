/// An accelerometer of the kernel's IIO subsystem as a motion source: buffered where that is
/// possible, else by single readings. Thread: sensor.
#pragma once

#include <memory>
#include <string>

#include "Motion/IioDevice.h"
#include "Motion/IioReader.h"
#include "Motion/SourceWords.h"
#include "System/WakeEvent.h"

namespace tobrin {

class DeviceWatch;

class IioSource final : public MotionSource {
 public:
  explicit IioSource(IioPaths paths);

  bool open() override;
  void run(const Sink& sink) override;
  void close() override;
  void interrupt() override;
  [[nodiscard]] std::string problem() const override { return words_.problem(); }
  [[nodiscard]] std::string description() const override { return words_.description(); }

 private:
  /// From the best way of reading to the one that asks least of the device.
  enum class Way { highestRate, rateAsFound, singleReadings };

  bool findReader();
  [[nodiscard]] std::unique_ptr<IioReader> makeReader(const IioDevice& device,
                                                      IioReader::Refusal& refusal) const;
  [[nodiscard]] IioReader::End startAndStream(const Sink& sink, DeviceWatch& watch);
  [[nodiscard]] bool humbler();

  IioPaths paths_;  // fixed after construction
  WakeEvent interrupted_;
  SourceWords words_;
  // Sensor thread.
  Way way_ = Way::highestRate;
  std::unique_ptr<IioReader> reader_;
  bool inUse_ = false;  // by another program, the last time that no reader was found
};

}  // namespace tobrin
