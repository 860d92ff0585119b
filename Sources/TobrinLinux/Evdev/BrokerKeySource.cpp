#include "Evdev/BrokerKeySource.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>

#include "Base/MachTime.h"
#include "Evdev/KeyBroker.h"

namespace tobrin {
namespace {

/// What the kernel's device of this number calls itself, which every program may read.
std::string nameOfDevice(uint16_t number) {
  std::ifstream file("/sys/class/input/event" + std::to_string(number) + "/device/name");
  std::string name;
  std::getline(file, name);
  return name;
}

}  // namespace

bool BrokerKeySource::open() {
  std::string why;
  pause_ = KeyPause::none;
  goesOnWhileLocked_ = false;
  stream_ = broker::open(why);
  setProblem(stream_ ? "" : why);
  return static_cast<bool>(stream_);
}

void BrokerKeySource::run(const Sink& sink) {
  for (;;) {
    std::array<pollfd, 2> waits{{{wake_.fd(), POLLIN, 0}, {stream_.get(), POLLIN, 0}}};
    retried([&] { return poll(waits.data(), waits.size(), -1); });
    if (waits[0].revents != 0) return;
    if (takePacket(sink)) continue;
    releaseAll(sink);
    stream_.reset();
    if (!openAgain()) return;
  }
}

/// At once, so that few keys are missed. The bus may not know yet that the broker has ended, and
/// then the first question is lost.
bool BrokerKeySource::openAgain() {
  return open() || open();
}

/// False once the broker has ended.
bool BrokerKeySource::takePacket(const Sink& sink) {
  std::array<KeyRecord, keyRecordsAtOnce> records;
  const ssize_t length =
      retried([&] { return recv(stream_.get(), records.data(), sizeof records, MSG_DONTWAIT); });
  if (length < 0) return errno == EAGAIN;
  const auto* const end = records.data() + static_cast<std::size_t>(length) / sizeof(KeyRecord);
  for (const auto* record = records.data(); record != end; ++record)
    take(*record, sink);
  return length > 0;
}

void BrokerKeySource::take(const KeyRecord& record, const Sink& sink) {
  using Kind = KeyRecord::Kind;
  switch (record.kind) {
    case Kind::press:
    case Kind::release: {
      const auto change =
          record.kind == Kind::press ? HeldKeys::Change::press : HeldKeys::Change::release;
      if (const auto told = keyboards_[record.keyboard].take(record.code, change, record.timeNs))
        sink(*told);
      break;
    }
    case Kind::gone:
      keyboards_[record.keyboard].releaseAll(machNow(), sink);
      keyboards_.erase(record.keyboard);
      break;
    case Kind::appeared:
      keyboards_.try_emplace(record.keyboard, nameOfDevice(record.code));
      break;
    case Kind::alsoWhenLocked:
      goesOnWhileLocked_ = true;
      break;
    case Kind::delivering:
      return setPause(KeyPause::none, sink);
    case Kind::inBackground:
      return setPause(KeyPause::inBackground, sink);
    case Kind::locked:
      return setPause(KeyPause::locked, sink);
    case Kind::takenBack:
      releaseAll(sink);
  }
}

void BrokerKeySource::setPause(KeyPause pause, const Sink& sink) {
  if (pause != KeyPause::none) releaseAll(sink);
  pause_ = pause;
  sink({.type = EventType::pauseChanged});
}

void BrokerKeySource::releaseAll(const Sink& sink) {
  for (auto& [number, held] : keyboards_)
    held.releaseAll(machNow(), sink);
  keyboards_.clear();
}

void BrokerKeySource::close() {
  keyboards_.clear();
  stream_.reset();
  wake_.clear();
}

bool BrokerKeySource::hasPermission() const {
  return broker::isAllowed();
}

std::string BrokerKeySource::problem() const {
  const MutexLock lock(mutex_);
  return problem_;
}

void BrokerKeySource::setProblem(const std::string& problem) {
  const MutexLock lock(mutex_);
  problem_ = problem;
}

}  // namespace tobrin
