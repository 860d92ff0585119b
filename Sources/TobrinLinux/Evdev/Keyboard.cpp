#include "Evdev/Keyboard.h"

#include <fcntl.h>
#include <libevdev/libevdev.h>

#include <cerrno>
#include <ctime>
#include <utility>

#include "Base/MachTime.h"

namespace tobrin {
namespace {

uint64_t ticks(const input_event& event) {
  return static_cast<uint64_t>(event.input_event_sec) * 1'000'000'000 +
         static_cast<uint64_t>(event.input_event_usec) * 1'000;
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
}

Keyboard::~Keyboard() {
  libevdev_free(device_);
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
    if (event.type != EV_KEY) continue;
    const auto time = monotonic_ ? std::optional(ticks(event)) : std::nullopt;
    if (const auto told = held_.take(event.code, change(event.value), time)) sink(*told);
  }
}

void Keyboard::releaseAll(const KeySource::Sink& sink) {
  held_.releaseAll(machNow(), sink);
}

}  // namespace tobrin
