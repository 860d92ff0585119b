#include "Input/GlobalHotkey.h"

#include <cassert>
#include <utility>

namespace tobrin {
namespace {

GlobalHotkey::Status::Kind kind(ShortcutGrab::Result result) {
  switch (result) {
    case ShortcutGrab::Result::granted:
      return GlobalHotkey::Status::Kind::active;
    case ShortcutGrab::Result::taken:
      return GlobalHotkey::Status::Kind::taken;
    case ShortcutGrab::Result::failed:
      break;
  }
  return GlobalHotkey::Status::Kind::failed;
}

}  // namespace

GlobalHotkey::GlobalHotkey(ShortcutService& service, std::function<void()> action)
    : service_(service), action_(std::move(action)) {
  assert(action_);
}

GlobalHotkey::~GlobalHotkey() {
  unregister();
}

GlobalHotkey::Status GlobalHotkey::registerHotkey(const std::optional<Hotkey>& hotkey) {
  const bool reserved = hotkey && service_.isReserved(*hotkey);
  if (!hotkey || reserved) {
    unregister();
    if (reserved) status_ = {.kind = Status::Kind::reservedBySystem, .hotkey = *hotkey};
    return status_;
  }
  // Replaces what is held: releasing it first would make a desktop ask its user again each time.
  const ShortcutGrab grab = service_.grab(*hotkey, action_);
  return status_ = {.kind = kind(grab.result), .hotkey = *hotkey, .error = grab.error};
}

void GlobalHotkey::unregister() {
  if (status_.kind == Status::Kind::active) service_.release();
  status_ = {};
}

}  // namespace tobrin
