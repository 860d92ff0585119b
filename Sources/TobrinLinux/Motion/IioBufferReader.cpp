#include "Motion/IioBufferReader.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "Base/MachTime.h"
#include "Motion/DeviceWatch.h"
#include "Motion/IioRate.h"
#include "System/Waiting.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t framesPerRead = 64;
constexpr std::array<const char*, IioLayout::channelCount> elementNames = {
    "in_accel_x", "in_accel_y", "in_accel_z", "in_timestamp"};

std::optional<IioLayout::Element> readElement(const fs::path& folder, std::size_t channel) {
  const std::string name = elementNames[channel];
  const auto type = IioScanType::parse(sysfs::read(folder / (name + "_type")).value_or(""));
  const auto index = sysfs::readNumber(folder / (name + "_index"));
  if (!type || !index || *index < 0 || *index > 1000) return std::nullopt;
  return IioLayout::Element{static_cast<IioLayout::Channel>(channel), static_cast<unsigned>(*index),
                            *type};
}

std::optional<IioLayout> readLayout(const fs::path& folder) {
  std::vector<IioLayout::Element> elements;
  for (std::size_t channel = 0; channel < IioLayout::channelCount; ++channel) {
    if (const auto element = readElement(folder, channel))
      elements.push_back(*element);
    else if (channel != IioLayout::stamp)
      return std::nullopt;
  }
  return IioLayout(std::move(elements));
}

IioReader::Refusal cannotWrite(const fs::path& file, int error) {
  std::string text =
      "cannot write " + file.string() + ": " + std::generic_category().message(error);
  if (error == EBUSY) text += "; another program uses it";
  return {text, error == EBUSY};
}

/// The buffer has one switch for all programs that may write it.
bool isSwitchedOn(const IioDevice& device) {
  return sysfs::readNumber(device.folder / "buffer" / "enable").value_or(0) != 0;
}

IioReader::Refusal inUse(const IioDevice& device) {
  return {device.title() + " is in use by another program", true};
}

}  // namespace

std::unique_ptr<IioBufferReader> IioBufferReader::prepare(const IioDevice& device,
                                                          const IioCalibration& calibration,
                                                          Rate rate, Refusal& refusal) {
  const std::optional<IioLayout> layout = readLayout(device.folder / "scan_elements");
  if (!layout) {
    refusal = {device.title() + " has no buffer"};
    return nullptr;
  }
  if (isSwitchedOn(device)) {
    refusal = inUse(device);
    return nullptr;
  }
  FileDescriptor file = FileDescriptor::open(device.node.c_str(), O_RDONLY | O_NONBLOCK);
  if (!file) {
    const int error = errno;
    refusal = {cannotOpen(device.node, error), error == EBUSY};
    return nullptr;
  }
  return std::unique_ptr<IioBufferReader>(
      new IioBufferReader(device, calibration, rate, std::move(file), *layout));
}

IioBufferReader::IioBufferReader(IioDevice device, const IioCalibration& calibration, Rate rate,
                                 FileDescriptor file, IioLayout layout)
    : device_(std::move(device)),
      calibration_(calibration),
      rate_(rate),
      file_(std::move(file)),
      layout_(std::move(layout)),
      bytes_(framesPerRead * layout_.frameBytes()) {}

bool IioBufferReader::start(Refusal& refusal) {
  if (isSwitchedOn(device_)) {  // since `prepare`
    refusal = inUse(device_);
    return false;
  }
  // What a device does not have or does not take of these only costs accuracy.
  (void)changes_.set(device_.folder / "current_timestamp_clock", "monotonic");
  if (rate_ == Rate::highest) hz_ = chooseRate(device_, changes_);
  if (!chooseElements(refusal)) return false;
  chooseTrigger();
  return switchOn(refusal);
}

bool IioBufferReader::switchOn(Refusal& refusal) {
  const fs::path buffer = device_.folder / "buffer";
  (void)changes_.set(buffer / "length", "256");  // a quarter of a second at 1000 Hz
  (void)changes_.set(buffer / "watermark", "1");
  // A buffer that is on already carries another program's frames.
  const int error = isSwitchedOn(device_) ? EBUSY : changes_.set(buffer / "enable", "1");
  if (error != 0) refusal = cannotWrite(buffer / "enable", error);
  return error == 0;
}

// The axes and the time stamp are part of a frame, everything else the device has is not.
bool IioBufferReader::chooseElements(Refusal& refusal) {
  for (const fs::path& file : sysfs::entries(device_.folder / "scan_elements")) {
    const std::string name = file.filename();
    if (!name.ends_with("_en")) continue;
    bool wanted = false;
    for (const char* element : elementNames)
      wanted = wanted || name == std::string(element) + "_en";
    const int error = changes_.set(file, wanted ? "1" : "0");
    if (error != 0) {
      refusal = cannotWrite(file, error);
      return false;
    }
  }
  return true;
}

// Most drivers come with their own trigger in place; some leave it to be named.
void IioBufferReader::chooseTrigger() {
  const fs::path current = device_.folder / "trigger" / "current_trigger";
  const auto set = sysfs::read(current);
  if (!set || !set->empty()) return;
  for (const fs::path& folder : sysfs::entries(device_.folder.parent_path())) {
    if (!folder.filename().string().starts_with("trigger")) continue;
    const std::string name = sysfs::read(folder / "name").value_or("");
    if (name.starts_with(device_.name) && changes_.set(current, name) == 0) return;
  }
}

IioReader::End IioBufferReader::stream(const MotionSource::Sink& sink, const WakeEvent& interrupt,
                                       DeviceWatch& watch) {
  constexpr int quietMs = 1500;  // longer than any device of use takes to send its first sample
  uint64_t last = machNow();
  bool heard = false;
  for (;;) {
    // A waiting poll does not notice that the device is removed, but the news of it does.
    waitForAny({interrupt.fd(), watch.fd(), file_.get()}, quietMs);
    if (isRaised(interrupt)) return End::interrupted;
    const ssize_t length =
        retried([&] { return ::read(file_.get(), bytes_.data(), bytes_.size()); });
    if (length > 0) {
      heard = true;
      last = machNow();
      pass(static_cast<std::size_t>(length) / layout_.frameBytes(), last, sink);
      continue;
    }
    if (length == 0 || errno != EAGAIN) return End::gone;
    if (machDelta(machNow(), last) >= quietMs) {
      if (!isSwitchedOn(device_)) return End::taken;
      if (!heard) return End::silent;
    }
    watch.note();
  }
}

void IioBufferReader::pass(std::size_t frames, uint64_t readTime, const MotionSource::Sink& sink) {
  const std::span<const uint8_t> bytes(bytes_);
  for (std::size_t i = 0; i < frames; ++i) {
    const IioLayout::Frame frame =
        layout_.decode(bytes.subspan(i * layout_.frameBytes(), layout_.frameBytes()));
    const uint64_t time = clock_.place(frame.stamp, readTime, frames - 1 - i);
    const auto count = [&](std::size_t axis) { return static_cast<double>(frame.axes[axis]); };
    sink(encodeMotionReport(calibration_.apply({count(0), count(1), count(2)})), time);
  }
}

std::string IioBufferReader::description() const {
  if (!hz_) return device_.title();
  std::array<char, 32> rate{};
  (void)std::snprintf(rate.data(), rate.size(), ", %.0f Hz", *hz_);
  return device_.title() + rate.data();
}

}  // namespace tobrin
