#include "Motion/HidrawSource.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <utility>
#include <vector>

#include "Base/MachTime.h"
#include "Motion/DeviceWatch.h"
#include "Motion/Sysfs.h"
#include "System/Waiting.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

std::vector<uint8_t> descriptorOf(const fs::path& device) {
  const auto bytes = sysfs::readBytes(device / "device" / "report_descriptor").value_or("");
  return {bytes.begin(), bytes.end()};
}

}  // namespace

std::optional<HidrawSource::Device> HidrawSource::find(const Paths& paths) {
  for (const fs::path& entry : sysfs::entries(paths.sys / "class" / "hidraw")) {
    const auto report = findMotionReport(descriptorOf(entry));
    if (report) return Device{paths.dev / entry.filename(), *report};
  }
  return std::nullopt;
}

HidrawSource::HidrawSource(Paths paths) : paths_(std::move(paths)) {
  words_.setDescription("HID motion sensor");
}

bool HidrawSource::open() {
  interrupted_.clear();
  return openDevice();
}

bool HidrawSource::openDevice() {
  const std::optional<Device> found = find(paths_);
  if (!found) {
    words_.setProblem("no HID device sends motion reports");
    return false;
  }
  device_ = *found;
  file_ = FileDescriptor::open(device_.node.c_str(), O_RDONLY | O_NONBLOCK);
  if (!file_) {
    words_.setProblem(cannotOpen(device_.node, errno));
    return false;
  }
  words_.setProblem({});
  words_.setDescription("HID motion sensor " + device_.node.string());
  return true;
}

void HidrawSource::run(const Sink& sink) {
  DeviceWatch watch("hidraw");
  while (!isRaised(interrupted_)) {
    if (file_ || openDevice()) stream(sink);
    if (!file_ && !watch.wait(interrupted_)) return;
  }
}

void HidrawSource::stream(const Sink& sink) {
  while (file_ && !isRaised(interrupted_)) {
    readAll(sink);
    if (file_) waitForAny({interrupted_.fd(), file_.get()}, -1);
  }
}

void HidrawSource::readAll(const Sink& sink) {
  std::array<uint8_t, 4096> buffer;  // the kernel's longest report
  for (;;) {
    const ssize_t length =
        retried([&] { return ::read(file_.get(), buffer.data(), buffer.size()); });
    if (length < 0 && errno == EAGAIN) return;
    if (length <= 0) {
      file_.reset();  // unplugged
      return;
    }
    const HidMotionReport& report = device_.report;
    if (static_cast<std::size_t>(length) != report.bytes) continue;
    if (report.id != 0 && buffer[0] != report.id) continue;
    sink(std::span(buffer).subspan(report.skip, MotionSource::reportBytes), machNow());
  }
}

void HidrawSource::close() {
  file_.reset();
}

void HidrawSource::interrupt() {
  interrupted_.raise();
}

}  // namespace tobrin
