#include "Shortcuts/DesktopShortcuts.h"

#include <algorithm>
#include <utility>

#include "Evdev/KeyCodes.h"

namespace tobrin {

DesktopShortcuts::DesktopShortcuts(const Environment& environment)
    : kind_(sessionKind(environment)),
      display_(kind_ == SessionKind::x11 ? environment("DISPLAY") : ""),
      names_(display_),
      system_(environment, [this] {
        const MutexLock lock(mutex_);
        if (reservedChanged_) reservedChanged_();
      }) {}

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
  if (KeyCodes::kernelCodes(hotkey.keyCode).empty()) {
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
    if (!portalBound_.load(std::memory_order_acquire)) press();
  });
  return {};
}

/// Nothing where there is no X server to ask.
std::optional<ShortcutGrab> DesktopShortcuts::grabFromServer(const Hotkey& hotkey) {
  server_.reset();
  if (display_.empty()) return std::nullopt;
  auto shortcut = std::make_unique<XShortcut>(display_, hotkey, [this] { press(); });
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
      PortalShortcut::trigger(hotkey, names_.naming(hotkey.keyCode)),
      PortalShortcut::Listener{
          .pressed = [this] { press(); },
          .boundChanged =
              [this](bool bound) { portalBound_.store(bound, std::memory_order_release); }});
}

void DesktopShortcuts::press() {
  const MutexLock lock(mutex_);
  if (pressed_) pressed_();
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

void DesktopShortcuts::setOnReservedChanged(std::function<void()> changed) {
  const MutexLock lock(mutex_);
  reservedChanged_ = std::move(changed);
}

std::string DesktopShortcuts::description() const {
  if (server_) return "X server";
  return portalBound_.load(std::memory_order_acquire) ? "desktop portal" : "key events";
}

}  // namespace tobrin
