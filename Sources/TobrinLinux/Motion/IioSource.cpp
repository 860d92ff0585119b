#include "Motion/IioSource.h"

#include <utility>

#include "Motion/DeviceWatch.h"
#include "Motion/IioBufferReader.h"
#include "Motion/IioPollReader.h"
#include "System/Waiting.h"

namespace tobrin {

IioSource::IioSource(IioPaths paths) : paths_(std::move(paths)) {
  words_.setDescription("IIO accelerometer");
}

bool IioSource::open() {
  interrupted_.clear();
  return findReader();
}

bool IioSource::findReader() {
  IioReader::Refusal first;  // of the best device
  for (const IioDevice& device : IioDevice::findAll(paths_)) {
    IioReader::Refusal refusal;
    reader_ = makeReader(device, refusal);
    if (reader_) {
      words_.setProblem({});
      words_.setDescription(reader_->description());
      return true;
    }
    if (first.words.empty()) first = refusal;
  }
  inUse_ = first.inUse;
  words_.setProblem(first.words.empty() ? "no accelerometer among the IIO devices" : first.words);
  return false;
}

std::unique_ptr<IioReader> IioSource::makeReader(const IioDevice& device,
                                                 IioReader::Refusal& refusal) const {
  const auto calibration = device.calibration(refusal.words);
  if (!calibration) return nullptr;
  if (way_ != Way::singleReadings) {
    const auto rate =
        way_ == Way::highestRate ? IioBufferReader::Rate::highest : IioBufferReader::Rate::asFound;
    auto reader = IioBufferReader::prepare(device, *calibration, rate, refusal);
    if (reader || refusal.inUse) return reader;
  }
  IioReader::Refusal second;
  auto reader = IioPollReader::prepare(device, *calibration, second);
  // The reason why the buffer cannot be used is the one worth telling.
  if (refusal.words.empty() || second.inUse) refusal = second;
  return reader;
}

void IioSource::run(const Sink& sink) {
  DeviceWatch watch("iio");
  while (!isRaised(interrupted_)) {
    if (reader_ || findReader()) {
      const IioReader::End end = startAndStream(sink, watch);
      reader_.reset();
      if (end == IioReader::End::silent && humbler()) continue;
      way_ = Way::highestRate;
      if (end == IioReader::End::interrupted || end == IioReader::End::taken) return;
    } else if (inUse_) {
      return;
    }
    if (!watch.wait(interrupted_)) return;
  }
}

IioReader::End IioSource::startAndStream(const Sink& sink, DeviceWatch& watch) {
  IioReader::Refusal refusal;
  if (!reader_->start(refusal)) {
    words_.setProblem(refusal.words);
    return refusal.inUse ? IioReader::End::taken : IioReader::End::silent;
  }
  words_.setDescription(reader_->description());
  const IioReader::End end = reader_->stream(sink, interrupted_, watch);
  if (end == IioReader::End::taken)
    words_.setProblem("another program has taken " + reader_->description());
  return end;
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
