#include "Motion/IioSource.h"

#include <utility>

#include "Motion/DeviceWatch.h"
#include "Motion/IioBufferReader.h"
#include "Motion/IioPollReader.h"
#include "Motion/Waiting.h"

namespace tobrin {

IioSource::IioSource(IioPaths paths) : paths_(std::move(paths)) {
  words_.setDescription("IIO accelerometer");
}

bool IioSource::open() {
  interrupted_.clear();
  return findReader();
}

bool IioSource::findReader() {
  std::string problem;
  for (const IioDevice& device : IioDevice::findAll(paths_)) {
    std::string reason;
    reader_ = makeReader(device, reason);
    if (reader_) {
      words_.setProblem({});
      words_.setDescription(reader_->description());
      return true;
    }
    if (problem.empty()) problem = reason;
  }
  words_.setProblem(problem.empty() ? "no accelerometer among the IIO devices" : problem);
  return false;
}

std::unique_ptr<IioReader> IioSource::makeReader(const IioDevice& device,
                                                 std::string& reason) const {
  const auto calibration = device.calibration(reason);
  if (!calibration) return nullptr;
  if (way_ != Way::singleReadings) {
    const auto rate =
        way_ == Way::highestRate ? IioBufferReader::Rate::highest : IioBufferReader::Rate::asFound;
    IioBufferReader::Refusal refusal;
    auto reader = IioBufferReader::prepare(device, *calibration, rate, refusal);
    if (reader) return reader;
    reason = refusal.words;
    if (refusal.inUse) return nullptr;
  }
  // The reason why the buffer cannot be used is the one worth telling.
  std::string ignored;
  return IioPollReader::prepare(device, *calibration, reason.empty() ? reason : ignored);
}

void IioSource::run(const Sink& sink) {
  DeviceWatch watch("iio");
  while (!isRaised(interrupted_)) {
    if (reader_ || findReader()) {
      const IioReader::End end = startAndStream(sink, watch);
      reader_.reset();
      if (end == IioReader::End::interrupted) return;
      if (end == IioReader::End::silent && humbler()) continue;
      way_ = Way::highestRate;
    }
    if (!watch.wait(interrupted_)) return;
  }
}

IioReader::End IioSource::startAndStream(const Sink& sink, DeviceWatch& watch) {
  std::string reason;
  const bool started = reader_->start(reason);
  if (!started) {
    words_.setProblem(reason);
    return IioReader::End::silent;
  }
  words_.setDescription(reader_->description());
  return reader_->stream(sink, interrupted_, watch);
}

bool IioSource::humbler() {
  if (way_ == Way::singleReadings) return false;
  way_ = way_ == Way::highestRate ? Way::rateAsFound : Way::singleReadings;
  return true;
}

void IioSource::close() {
  reader_.reset();
}

void IioSource::interrupt() {
  interrupted_.raise();
}

}  // namespace tobrin
