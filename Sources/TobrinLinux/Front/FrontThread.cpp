#include "Front/FrontThread.h"

#include <poll.h>

#include <array>
#include <cassert>
#include <optional>

#include "Base/Retried.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {

void FrontThread::start(Changed changed) {
  assert(!thread_.joinable());
  thread_ = std::thread([this, changed = std::move(changed)] { run(changed); });
}

void FrontThread::stop() {
  if (!thread_.joinable()) return;
  stop_.raise();
  thread_.join();
  stop_.clear();
}

void FrontThread::run(const Changed& changed) {
  nameThisThread("Tobrin.Front");
  for (auto pause = pauses_.begin();; ++pause) {
    if (const auto feed = chosenFeed(); feed && follow(*feed, changed)) return;
    changed({.knowledge = Front::Knowledge::desktopDoesNotTell});
    if (pause == pauses_.end() || endsWithin(*pause)) return;
  }
}

bool FrontThread::endsWithin(std::chrono::milliseconds time) const {
  pollfd wait{stop_.fd(), POLLIN, 0};
  return retried([&] { return poll(&wait, 1, static_cast<int>(time.count())); }) != 0;
}

std::unique_ptr<FrontFeed> FrontThread::chosenFeed() const {
  for (const MakeFeed& make : feeds_) {
    auto feed = make();
    if (feed && feed->descriptor() >= 0) return feed;
  }
  return nullptr;
}

bool FrontThread::follow(FrontFeed& feed, const Changed& changed) {
  std::optional<Front> told;
  const auto report = [&](const Front& front) {
    if (front != told) changed(*(told = front));
  };
  while (feed.process(report)) {
    std::array<pollfd, 2> waits{{{stop_.fd(), POLLIN, 0}, {feed.descriptor(), POLLIN, 0}}};
    if (retried([&] { return poll(waits.data(), waits.size(), -1); }) < 0) return false;
    if (waits[0].revents != 0) return true;
  }
  return false;
}

}  // namespace tobrin
