#include "OpenKeyboard.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <utility>

namespace tobrin {
namespace {

using Bits = std::array<unsigned char, KEY_CNT / 8>;

KeyFilter::Keys keysIn(const Bits& bits) {
  KeyFilter::Keys keys;
  for (std::size_t key = 0; key < keys.size(); ++key)
    keys[key] = (bits[key / 8] >> (key % 8) & 1) != 0;
  return keys;
}

KeyFilter::Keys heldOn(int fd) {
  Bits bits{};
  ioctl(fd, EVIOCGKEY(sizeof bits), bits.data());
  return keysIn(bits);
}

/// All letters or a whole keypad: no power button, no mouse.
bool isKeyboard(int fd) {
  Bits bits{};
  if (ioctl(fd, EVIOCGBIT(EV_KEY, sizeof bits), bits.data()) < 0) return false;
  const KeyFilter::Keys keys = keysIn(bits);
  const auto has = [&](std::pair<std::size_t, std::size_t> range) {
    while (range.first <= range.second && keys[range.first])
      ++range.first;
    return range.first > range.second;
  };
  return (has({KEY_Q, KEY_P}) && has({KEY_A, KEY_L}) && has({KEY_Z, KEY_M})) ||
         (has({KEY_KP7, KEY_KP9}) && has({KEY_KP4, KEY_KP6}) && has({KEY_KP1, KEY_KP0}));
}

uint64_t nowNs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(now.tv_nsec);
}

}  // namespace

std::unique_ptr<OpenKeyboard> OpenKeyboard::open(const std::string& node, uint32_t number) {
  FileDescriptor file = FileDescriptor::open(node.c_str(), O_RDONLY | O_NONBLOCK);
  int clock = CLOCK_MONOTONIC;
  if (!file || !isKeyboard(file.get()) || ioctl(file.get(), EVIOCSCLOCKID, &clock) != 0) return {};
  return std::unique_ptr<OpenKeyboard>(new OpenKeyboard(node, number, std::move(file)));
}

OpenKeyboard::OpenKeyboard(const std::string& node, uint32_t number, FileDescriptor file)
    : node_(node), number_(number), file_(std::move(file)), filter_(number, heldOn(file_.get())) {}

OpenKeyboard::~OpenKeyboard() {
  ioctl(file_.get(), EVIOCREVOKE, nullptr);  // fails where the keyboard is gone, which is fine
}

bool OpenKeyboard::read(std::vector<KeyRecord>& told) {
  std::array<input_event, keyRecordsAtOnce> events;
  const ssize_t length = retried([&] { return ::read(file_.get(), events.data(), sizeof events); });
  if (length < 0) return errno == EAGAIN;
  const auto* const end = events.data() + static_cast<std::size_t>(length) / sizeof(input_event);
  for (const auto* event = events.data(); event != end; ++event) {
    if (!filter_.take(*event, told)) filter_.catchUp(heldOn(file_.get()), nowNs(), told);
  }
  return length > 0;
}

}  // namespace tobrin
