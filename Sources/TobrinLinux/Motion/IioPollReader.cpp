#include "Motion/IioPollReader.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>
#include <utility>

#include "Base/MachTime.h"
#include "Motion/Sysfs.h"
#include "System/Waiting.h"

namespace tobrin {

std::unique_ptr<IioPollReader> IioPollReader::prepare(const IioDevice& device,
                                                      const IioCalibration& calibration,
                                                      Refusal& refusal) {
  std::array<FileDescriptor, 3> axes;
  for (std::size_t i = 0; i < axes.size(); ++i) {
    const auto file = device.axisFile(i, "raw");
    axes[i] = FileDescriptor::open(file.c_str(), O_RDONLY);
    if (axes[i]) continue;
    refusal.words = cannotOpen(file, errno);
    return nullptr;
  }
  auto reader =
      std::unique_ptr<IioPollReader>(new IioPollReader(device, calibration, std::move(axes)));
  if (reader->readCounts()) return reader;
  const int error = errno;
  refusal.words = "cannot read " + device.title() + ": " + std::generic_category().message(error);
  refusal.inUse = error == EBUSY;
  return nullptr;
}

IioPollReader::IioPollReader(IioDevice device, const IioCalibration& calibration,
                             std::array<FileDescriptor, 3> axes)
    : device_(std::move(device)), calibration_(calibration), axes_(std::move(axes)) {}

bool IioPollReader::start(Refusal&) {
  return true;
}

std::optional<std::array<double, 3>> IioPollReader::readCounts() const {
  std::array<double, 3> counts{};
  for (std::size_t i = 0; i < counts.size(); ++i) {
    std::array<char, 32> text;
    const ssize_t length = ::pread(axes_[i].get(), text.data(), text.size(), 0);
    if (length <= 0) return std::nullopt;
    const std::string_view all(text.data(), static_cast<std::size_t>(length));
    const auto count = sysfs::parseNumber(all.substr(0, all.find('\n')));
    if (!count) {
      errno = EPROTO;
      return std::nullopt;
    }
    counts[i] = *count;
  }
  return counts;
}

IioReader::End IioPollReader::stream(const MotionSource::Sink& sink, const WakeEvent& interrupt,
                                     DeviceWatch&) {
  constexpr double intervalMs = 4;  // six samples in the window around a key
  constexpr int mostFailures = 100;
  int failures = 0;
  while (!isRaised(interrupt)) {
    const uint64_t before = machNow();
    const auto counts = readCounts();
    const uint64_t after = machNow();
    if (!counts && (errno == ENODEV || ++failures == mostFailures))
      return errno == EBUSY ? End::taken : End::gone;
    if (counts) {
      failures = 0;
      sink(encodeMotionReport(calibration_.apply(*counts)), before + (after - before) / 2);
    }
    // Slow buses get as much rest as work.
    const double rest = std::max(intervalMs - machDelta(after, before), machDelta(after, before));
    waitForAny({interrupt.fd()}, static_cast<int>(std::ceil(std::min(rest, 100.0))));
  }
  return End::interrupted;
}

std::string IioPollReader::description() const {
  return device_.title() + ", single readings";
}

}  // namespace tobrin
