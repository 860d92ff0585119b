#include "Model/KeyAccessWatch.h"

#include <chrono>
#include <utility>

#include "Base/MachTime.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

constexpr auto lookInterval = 1500ms;
constexpr double relaunchAfterMs = 3000;  // access granted, but no key source for so long

}  // namespace

KeyAccessWatch::KeyAccessWatch(KeyMonitor& monitor, SerialQueue& main,
                               std::function<bool()> isUpdated, std::function<void()> onChange)
    : monitor_(monitor),
      main_(main),
      isUpdated_(std::move(isUpdated)),
      onChange_(std::move(onChange)) {}

void KeyAccessWatch::start() {
  if (monitor_.start()) return publishListening();
  const bool granted = monitor_.hasPermission();
  publishWaiting(granted);
  if (!granted) monitor_.requestPermission();
  lookLater();
}

void KeyAccessWatch::monitorChanged() {
  if (monitor_.isRunning()) return publishListening();
  publishWaiting(monitor_.hasPermission());
  lookLater();
}

void KeyAccessWatch::publishListening() {
  grantedWithoutKeys_.reset();
  publish({.hasPermission = true,
           .listening = true,
           .pause = monitor_.pause(),
           .hearsWhileLocked = monitor_.goesOnWhileLocked()});
}

void KeyAccessWatch::publishWaiting(bool granted) {
  publish({.hasPermission = granted, .needsRelaunch = state_.needsRelaunch || isUpdated_()});
}

void KeyAccessWatch::lookLater() {
  if (willLook_) return;
  willLook_ = true;
  main_.after(lookInterval, [this, alive = std::weak_ptr(alive_)] {
    if (alive.expired()) return;
    willLook_ = false;
    look();
    if (!state_.listening) lookLater();
  });
}

void KeyAccessWatch::look() {
  if (state_.listening) return;
  const bool granted = monitor_.hasPermission();
  publishWaiting(granted);
  if (!granted) return;
  start();
  if (state_.listening) return;
  if (!grantedWithoutKeys_) grantedWithoutKeys_ = main_.now();
  const double waitedMs = machDelta(main_.now(), *grantedWithoutKeys_);
  if (waitedMs > relaunchAfterMs) publish({.hasPermission = true, .needsRelaunch = true});
}

void KeyAccessWatch::publish(const State& state) {
  if (std::exchange(state_, state) != state) onChange_();
}

}  // namespace tobrin
