#include "KeyStream.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "KeyboardNodes.h"

namespace tobrin {

namespace {

/// The number in "/dev/input/event5": other programs may look up by it what the device is.
uint16_t numberOf(const std::string& node) {
  constexpr std::string_view before = "/dev/input/event";
  uint16_t number = 0;
  std::from_chars(node.data() + before.size(), node.data() + node.size(), number);
  return number;
}

}  // namespace

KeyStream::KeyStream(sd_event* loop, const Seats& seats, uid_t user, FileDescriptor socket,
                     Notices notices)
    : loop_(loop),
      seats_(seats),
      user_(user),
      socket_(std::move(socket)),
      notices_(std::move(notices)) {
  sd_event_source* source = nullptr;
  sd_event_add_io(loop_, &source, socket_.get(), 0, &onHangUp, this);  // 0: hang-up alone
  hangUp_.reset(source);
}

bool KeyStream::follow(const Place& place) {
  place_ = place;
  if (!seats_.isInFront(place_)) {
    stop(place_.kind == Place::Kind::locked ? KeyRecord::Kind::locked
                                            : KeyRecord::Kind::inBackground);
    return place_.kind == Place::Kind::locked || place_.kind == Place::Kind::background;
  }
  if (std::exchange(told_, KeyRecord::Kind::delivering) != KeyRecord::Kind::delivering)
    tell(KeyRecord::Kind::delivering);
  const KeyboardNodes found = keyboardNodes(place_.seat);
  if (found.isComplete) letGoOfAllBut(found.nodes);
  for (const std::string& node : found.nodes)
    takeUp(node);
  return found.isComplete;
}

void KeyStream::stop(KeyRecord::Kind why) {
  keyboards_.clear();
  if (std::exchange(told_, why) != why) tell(why);
}

void KeyStream::takeUp(const std::string& node) {
  const auto isNode = [&](const Listening& one) { return one.keyboard->node() == node; };
  if (std::any_of(keyboards_.begin(), keyboards_.end(), isNode)) return;
  auto keyboard = OpenKeyboard::open(node, nextNumber_);
  sd_event_source* source = nullptr;
  if (!keyboard || sd_event_add_io(loop_, &source, keyboard->fd(), EPOLLIN, &onKeys, this) < 0)
    return;
  send(std::array{KeyRecord{
      .keyboard = nextNumber_++, .code = numberOf(node), .kind = KeyRecord::Kind::appeared}});
  // Notices of the login manager that have come in meanwhile go first.
  sd_event_source_set_priority(source, SD_EVENT_PRIORITY_NORMAL + 1);
  keyboards_.push_back({std::move(keyboard), EventSource(source)});
}

/// A keyboard may be given to another seat while it is open.
void KeyStream::letGoOfAllBut(const std::vector<std::string>& nodes) {
  std::erase_if(keyboards_, [&](const Listening& one) {
    if (std::find(nodes.begin(), nodes.end(), one.keyboard->node()) != nodes.end()) return false;
    send(std::array{KeyRecord{.keyboard = one.keyboard->number(), .kind = KeyRecord::Kind::gone}});
    return true;
  });
}

/// The console is looked at after the keys were read: one typed after a switch is not passed on.
void KeyStream::takeKeys(int fd) {
  const auto at = std::find_if(keyboards_.begin(), keyboards_.end(),
                               [&](const Listening& one) { return one.keyboard->fd() == fd; });
  if (at == keyboards_.end()) return;
  records_.clear();
  const bool isThere = at->keyboard->read(records_);
  if (!isThere) {
    records_.push_back({.keyboard = at->keyboard->number(), .kind = KeyRecord::Kind::gone});
    keyboards_.erase(at);
  }
  const bool isInFront = seats_.isInFront(place_);
  if (isInFront) {
    send(records_);
  } else {
    stop(KeyRecord::Kind::inBackground);
  }
  if (!isThere || !isInFront) notices_.onDoubt();
}

/// A program that does not read loses the stream, and with it all that it would have got.
void KeyStream::send(std::span<const KeyRecord> records) {
  while (!records.empty()) {
    const auto packet = records.first(std::min(records.size(), keyRecordsAtOnce));
    records = records.subspan(packet.size());
    if (::send(socket_.get(), packet.data(), packet.size_bytes(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0)
      shutdown(socket_.get(), SHUT_RDWR);
  }
}

int KeyStream::onKeys(sd_event_source*, int fd, uint32_t, void* self) {
  static_cast<KeyStream*>(self)->takeKeys(fd);
  return 0;
}

int KeyStream::onHangUp(sd_event_source*, int, uint32_t, void* self) {
  const auto onEnd = static_cast<KeyStream*>(self)->notices_.onEnd;  // outlives the stream
  onEnd();
  return 0;
}

}  // namespace tobrin
