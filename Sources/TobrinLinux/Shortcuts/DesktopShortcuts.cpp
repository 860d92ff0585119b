#include "Shortcuts/DesktopShortcuts.h"

#include <algorithm>
#include <utility>

#include "Base/MachTime.h"
#include "Evdev/KeyCodes.h"

namespace tobrin {

DesktopShortcuts::DesktopShortcuts(Memory memory, const Environment& environment)
    : memory_(std::move(memory)),
      kind_(sessionKind(environment)),
      display_(kind_ == SessionKind::x11 ? environment("DISPLAY").value_or("") : ""),
      names_(display_),
      system_(environment, [this] { tellChange(); }) {}

DesktopShortcuts::~DesktopShortcuts() {
  release();
}

bool DesktopShortcuts::isReserved(const Hotkey& hotkey) {
  const std::vector<Accelerator> own = system_.current();
  if (own.empty()) return false;
  const KeyNaming naming = names_.naming(hotkey.keyCode);
  return std::any_of(own.begin(), own.end(),
                     [&](const Accelerator& each) { return each.matches(hotkey, naming); });
}

ShortcutGrab DesktopShortcuts::grab(const Hotkey& hotkey, std::function<void()> pressed) {
  if (kernelCodesOf(hotkey.keyCode).empty()) {
    release();
    return {ShortcutGrab::Result::failed, noSuchKey};
  }
  {
    const MutexLock lock(mutex_);
    pressed_ = std::move(pressed);
  }
  if (const auto outcome = grabFromServer(hotkey)) return *outcome;
  if (kind_ == SessionKind::wayland && askedOfPortal_ != hotkey) askPortal(hotkey);
  chords_.set(hotkey, [this] {
    if (!portalBound_.load(std::memory_order_acquire)) press(ShortcutRoute::shared);
  });
  return {};
}

/// Nothing where there is no X server to ask.
std::optional<ShortcutGrab> DesktopShortcuts::grabFromServer(const Hotkey& hotkey) {
  server_.reset();
  if (display_.empty()) return std::nullopt;
  auto shortcut =
      std::make_unique<XShortcut>(display_, hotkey, [this] { press(ShortcutRoute::exclusive); });
  const ShortcutGrab outcome = shortcut->outcome();
  if (outcome.error == unavailable) return std::nullopt;
  chords_.clear();
  if (outcome.result == ShortcutGrab::Result::granted) server_ = std::move(shortcut);
  return outcome;
}

void DesktopShortcuts::askPortal(const Hotkey& hotkey) {
  portal_.reset();
  askedOfPortal_ = hotkey;
  portal_ = std::make_unique<PortalShortcut>(
      PortalShortcut::trigger(hotkey, names_.naming(hotkey.keyCode)), memory_.read(),
      PortalShortcut::Listener{.pressed = [this] { press(ShortcutRoute::desktop); },
                               .boundChanged = [this](bool bound) { portalBoundChanged(bound); },
                               .remember = memory_.write});
}

void DesktopShortcuts::portalBoundChanged(bool bound) {
  portalBound_.store(bound, std::memory_order_release);
  tellChange();
}

// A portal may report presses without having said that it would. The first such press shows that,
// and our own key events have reported it as well.
void DesktopShortcuts::press(ShortcutRoute route) {
  constexpr double samePressMs = 200;
  const MutexLock lock(mutex_);
  const uint64_t before = std::exchange(pressedAt_, machNow());
  const bool isOther = std::exchange(pressedBy_, route) != route;
  if (isOther && before != 0 && machDelta(pressedAt_, before) < samePressMs) return;
  if (pressed_) pressed_();
}

void DesktopShortcuts::tellChange() {
  const MutexLock lock(mutex_);
  if (changed_) changed_();
}

void DesktopShortcuts::release() {
  chords_.clear();
  server_.reset();
  portal_.reset();
  askedOfPortal_.reset();
  const MutexLock lock(mutex_);
  pressed_ = nullptr;
}

std::optional<std::string> DesktopShortcuts::keyName(uint32_t keyCode) {
  std::string label = names_.naming(keyCode).label;
  if (label.empty()) return std::nullopt;
  return label;
}

void DesktopShortcuts::setOnChanged(std::function<void()> changed) {
  const MutexLock lock(mutex_);
  changed_ = std::move(changed);
}

ShortcutRoute DesktopShortcuts::route() const {
  if (server_) return ShortcutRoute::exclusive;
  return portalBound_.load(std::memory_order_acquire) ? ShortcutRoute::desktop
                                                      : ShortcutRoute::shared;
}

}  // namespace tobrin
