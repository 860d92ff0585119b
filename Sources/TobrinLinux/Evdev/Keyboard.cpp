#include "Evdev/Keyboard.h"

#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <linux/input.h>
#include <sys/ioctl.h>

#include <array>
#include <bitset>
#include <cerrno>
#include <ctime>
#include <utility>

#include "Base/MachTime.h"
#include "Base/MouseButton.h"
#include "Evdev/KeyCodes.h"

namespace tobrin {
namespace {

uint64_t ticks(const input_event& event) {
  return static_cast<uint64_t>(event.input_event_sec) * 1'000'000'000 +
         static_cast<uint64_t>(event.input_event_usec) * 1'000;
}

using Codes = std::bitset<1024>;  // as many as any type of events has

/// Of the events of one type, the kernel wakes this program for those alone. Kernels that know of
/// no such choice send all.
void receiveOnly(int device, uint32_t type, const Codes& codes) {
  std::array<uint8_t, Codes().size() / 8> bits{};
  for (std::size_t code = 0; code < codes.size(); ++code)
    bits[code / 8] = static_cast<uint8_t>(bits[code / 8] | codes[code] << (code % 8));
  input_mask mask{.type = type,
                  .codes_size = static_cast<uint32_t>(bits.size()),
                  .codes_ptr = reinterpret_cast<uintptr_t>(bits.data())};
  ioctl(device, EVIOCSMASK, &mask);
}

HeldKeys::Change change(int32_t value) {
  switch (value) {
    case 0:
      return HeldKeys::Change::release;
    case 1:
      return HeldKeys::Change::press;
    default:
      return HeldKeys::Change::repeat;
  }
}

}  // namespace

std::unique_ptr<Keyboard> Keyboard::open(const std::string& node, int& error) {
  FileDescriptor file = FileDescriptor::open(node.c_str(), O_RDONLY | O_NONBLOCK);
  if (!file) {
    error = errno;
    return nullptr;
  }
  libevdev* device = nullptr;
  if (const int failure = libevdev_new_from_fd(file.get(), &device); failure < 0) {
    error = -failure;
    return nullptr;
  }
  return std::unique_ptr<Keyboard>(new Keyboard(node, std::move(file), device));
}

Keyboard::Keyboard(std::string node, FileDescriptor file, libevdev* device)
    : node_(std::move(node)),
      file_(std::move(file)),
      device_(device),
      held_(libevdev_get_name(device)) {
  monotonic_ = libevdev_set_clock_id(device_, CLOCK_MONOTONIC) == 0;
  for (unsigned key = 0; key <= KEY_MAX; ++key) {
    if (libevdev_get_event_value(device_, EV_KEY, key) != 0) held_.preset(key);
  }
  receiveOnly(fd(), EV_ABS, {});
  receiveOnly(fd(), EV_MSC, {});  // touchpads have a time stamp there for each step of a finger
  hearMouse(MouseHearing::nothing);
}

Keyboard::~Keyboard() {
  libevdev_free(device_);
}

void Keyboard::hearMouse(MouseHearing hearing) {
  mouse_ = hearing;
  Codes wheel;
  if (hearing == MouseHearing::buttonsAndWheel) wheel.set(REL_WHEEL).set(REL_HWHEEL);
  receiveOnly(fd(), EV_REL, wheel);
}

void Keyboard::turnWheel(std::optional<uint64_t> time, const KeySource::Sink& sink) const {
  sink({.code = codeOf(MouseButton::wheel), .time = time, .keyboard = held_.name()});
}

bool Keyboard::takeAll(const KeySource::Sink& sink) {
  unsigned mode = LIBEVDEV_READ_FLAG_NORMAL;
  for (;;) {
    input_event event{};
    const int status = libevdev_next_event(device_, mode, &event);
    if (status == -EAGAIN && mode == LIBEVDEV_READ_FLAG_SYNC) {
      mode = LIBEVDEV_READ_FLAG_NORMAL;
      continue;
    }
    if (status == -EAGAIN) return true;
    if (status == -EINTR) continue;
    if (status < 0) return false;
    // The kernel's buffer ran over: the library now reports what differs from the state it knew.
    if (status == LIBEVDEV_READ_STATUS_SYNC) mode = LIBEVDEV_READ_FLAG_SYNC;
    const auto time = monotonic_ ? std::optional(ticks(event)) : std::nullopt;
    const bool isWheel =
        event.type == EV_REL && (event.code == REL_WHEEL || event.code == REL_HWHEEL);
    if (isWheel && mouse_ == MouseHearing::buttonsAndWheel) turnWheel(time, sink);
    const bool isSilent = mouse_ == MouseHearing::nothing && mouseCodeOf(event.code);
    if (event.type != EV_KEY || isSilent) continue;
    if (const auto told = held_.take(event.code, change(event.value), time)) sink(*told);
  }
}

void Keyboard::releaseAll(const KeySource::Sink& sink) {
  held_.releaseAll(machNow(), sink);
}

}  // namespace tobrin
