#include "Evdev/EvdevKeySource.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

namespace tobrin {
namespace {

/// What `run` waits for in addition to keyboards, in this order.
enum Waits : std::size_t {
  wakeWait,
  mouseWait,
  hotplugWait,
  permissionWait,
  seatWait,
  firstKeyboardWait
};

bool isReadable(const std::string& node) {
  return faccessat(AT_FDCWD, node.c_str(), R_OK, AT_EACCESS) == 0;
}

/// Who may read a device, for people: " (members of the group "input" may)".
std::string readersOf(const std::string& node) {
  struct stat status {};
  group entry{};
  group* found = nullptr;
  std::array<char, 4096> texts;
  if (stat(node.c_str(), &status) != 0 || (status.st_mode & S_IRGRP) == 0) return {};
  getgrgid_r(status.st_gid, &entry, texts.data(), texts.size(), &found);
  return found == nullptr ? ""
                          : " (members of the group \"" + std::string(entry.gr_name) + "\" may)";
}

}  // namespace

struct EvdevKeySource::Watches {
  KeyboardWatch changes;  // before the first list is read, so that no change is missed
  KeyboardList list;
  SeatWatch seat;
};

EvdevKeySource::EvdevKeySource() = default;
EvdevKeySource::~EvdevKeySource() = default;

bool EvdevKeySource::open() {
  if (!KeyboardList::isPossible()) {
    setProblem("this system has no input devices");
    return false;
  }
  watches_ = std::make_unique<Watches>();
  isOurs_ = watches_->seat.isOurs();
  takeUpKeyboards();
  if (refused_) watches_.reset();
  return !refused_;
}

void EvdevKeySource::takeUpKeyboards() {
  const std::vector<std::string> nodes = watches_->list.nodes(watches_->seat.seat());
  const std::string refusal = takeUp(nodes);
  const bool hasAny = std::any_of(keyboards_.begin(), keyboards_.end(), [&](const auto& open) {
    return std::find(nodes.begin(), nodes.end(), open->node()) != nodes.end();
  });
  refused_ = !hasAny && !refusal.empty();
  setProblem(refused_ ? refusal : "");
  if (!refused_) takeUpMice();
}

void EvdevKeySource::takeUpMice() {
  const MouseHearing hearing = mouse_.hearing();
  if (hearing != MouseHearing::nothing) takeUp(watches_->list.mice(watches_->seat.seat()));
  for (const auto& keyboard : keyboards_)
    keyboard->hearMouse(hearing);
}

/// Opens every device that is not open yet, unless another user is in front of them. Returns why
/// one of them may not be read, in words.
std::string EvdevKeySource::takeUp(const std::vector<std::string>& nodes) {
  std::string refusal;
  for (const std::string& node : nodes) {
    const auto hasNode = [&](const auto& keyboard) { return keyboard->node() == node; };
    if (!isOurs_ || std::any_of(keyboards_.begin(), keyboards_.end(), hasNode)) continue;
    int error = 0;
    if (auto keyboard = Keyboard::open(node, error)) {
      keyboards_.push_back(std::move(keyboard));
    } else if (error == EACCES || error == EPERM) {
      refusal = "no permission to read " + node + readersOf(node);
    }
  }
  return refusal;
}

/// Lets go of mice that nobody wants to hear any more.
void EvdevKeySource::followMouseWish(const Sink& sink) {
  mouse_.clear();
  if (mouse_.hearing() != MouseHearing::nothing) return;
  const std::vector<std::string> wanted = watches_->list.nodes(watches_->seat.seat());
  std::erase_if(keyboards_, [&](const auto& open) {
    if (std::find(wanted.begin(), wanted.end(), open->node()) != wanted.end()) return false;
    open->releaseAll(sink);
    return true;
  });
}

void EvdevKeySource::run(const Sink& sink) {
  std::vector<pollfd> waits = everythingToWaitFor();
  for (;;) {
    if (retried([&] { return poll(waits.data(), waits.size(), -1); }) < 0) {
      setProblem("waiting for keys failed: " + std::generic_category().message(errno));
      return;
    }
    if (waits[wakeWait].revents != 0) return;
    bool changed = takeKeys(waits, sink);
    if (waits[mouseWait].revents != 0) {
      followMouseWish(sink);
      changed = true;
    }
    if (waits[seatWait].revents != 0) changed |= takeSeatChange(sink);
    if (waits[hotplugWait].revents != 0 || waits[permissionWait].revents != 0) {
      watches_->changes.clear();
      dropWhatIsNotOurs(sink);
      changed = true;
    }
    if (!changed) continue;
    takeUpKeyboards();
    if (refused_) return;
    waits = everythingToWaitFor();
  }
}

std::vector<pollfd> EvdevKeySource::everythingToWaitFor() const {
  std::vector<pollfd> waits(firstKeyboardWait);
  waits[wakeWait].fd = wake_.fd();
  waits[mouseWait].fd = mouse_.fd();
  waits[hotplugWait].fd = watches_->changes.hotplugFd();
  waits[permissionWait].fd = watches_->changes.permissionFd();
  waits[seatWait].fd = watches_->seat.fd();
  for (const auto& keyboard : keyboards_)
    waits.push_back({keyboard->fd(), 0, 0});
  for (pollfd& wait : waits)
    wait.events = POLLIN;
  return waits;
}

/// Whether a keyboard has gone.
bool EvdevKeySource::takeKeys(const std::vector<pollfd>& waits, const Sink& sink) {
  std::size_t wait = firstKeyboardWait;
  const auto removed = std::remove_if(keyboards_.begin(), keyboards_.end(), [&](auto& keyboard) {
    if (waits[wait++].revents == 0 || keyboard->takeAll(sink)) return false;
    keyboard->releaseAll(sink);
    return true;
  });
  const bool anyGone = removed != keyboards_.end();
  keyboards_.erase(removed, keyboards_.end());
  return anyGone;
}

/// Drops devices that went to another seat or may no longer be read: while open, both could be.
void EvdevKeySource::dropWhatIsNotOurs(const Sink& sink) {
  std::vector<std::string> ours = watches_->list.nodes(watches_->seat.seat());
  std::ranges::move(watches_->list.mice(watches_->seat.seat()), std::back_inserter(ours));
  std::erase_if(keyboards_, [&](const auto& keyboard) {
    const bool isHere = std::ranges::find(ours, keyboard->node()) != ours.end();
    if (isHere && isReadable(keyboard->node())) return false;
    keyboard->releaseAll(sink);
    return true;
  });
}

/// Whether the seat has gone to another user or come back. Keyboards are closed while they are not
/// ours.
bool EvdevKeySource::takeSeatChange(const Sink& sink) {
  watches_->seat.clear();
  const bool isOurs = watches_->seat.isOurs();
  if (isOurs_.exchange(isOurs) == isOurs) return false;
  for (const auto& keyboard : keyboards_)
    keyboard->releaseAll(sink);
  keyboards_.clear();
  sink({.type = EventType::pauseChanged});
  return true;
}

void EvdevKeySource::close() {
  keyboards_.clear();
  watches_.reset();
  wake_.clear();
}

void EvdevKeySource::interrupt() {
  wake_.raise();
}

bool EvdevKeySource::hasPermission() const {
  if (!KeyboardList::isPossible()) return false;  // as in a sandbox that keeps the devices out
  const std::vector<std::string> nodes = KeyboardList().nodes(SeatWatch().seat());
  return nodes.empty() || std::any_of(nodes.begin(), nodes.end(), isReadable);
}

bool EvdevKeySource::canHearMouse() const {
  const std::vector<std::string> nodes = KeyboardList().mice(SeatWatch().seat());
  return nodes.empty() || std::any_of(nodes.begin(), nodes.end(), isReadable);
}

std::string EvdevKeySource::problem() const {
  const MutexLock lock(mutex_);
  return problem_;
}

void EvdevKeySource::setProblem(const std::string& problem) {
  const MutexLock lock(mutex_);
  problem_ = problem;
}

}  // namespace tobrin
