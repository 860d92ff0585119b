#include "X11/XShortcut.h"

#include <poll.h>

#include <array>
#include <cerrno>
#include <utility>

#include "Evdev/KeyCodes.h"
#include "Threads/ThreadPreparation.h"
#include "X11/XModifierMap.h"

namespace tobrin {
namespace {

constexpr uint16_t highestKernelCode = 255 - xKeyCodeOffset;  // a key code is one byte

}  // namespace

XShortcut::XShortcut(const std::string& display, const Hotkey& hotkey,
                     std::function<void()> pressed)
    : hotkey_(hotkey),
      pressed_(std::move(pressed)),
      kernelCodes_(kernelCodesOf(hotkey.keyCode)),
      connection_(connectToX(display)) {
  if (!connection_) return;
  outcome_ = grabAll();
  if (outcome_.result != ShortcutGrab::Result::granted) {
    connection_.reset();  // gives back what was taken
    return;
  }
  thread_ = std::thread([this] { listen(); });
}

XShortcut::~XShortcut() {
  if (!thread_.joinable()) return;
  stop_.raise();
  thread_.join();
}

ShortcutGrab XShortcut::grabAll() {
  const XModifierMap map(connection_.get());
  std::vector<xcb_void_cookie_t> requests;
  const uint16_t modifiers = map.mask(hotkey_.modifiers);
  for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())); screen.rem > 0;
       xcb_screen_next(&screen)) {
    xcb_ungrab_key(connection_.get(), XCB_GRAB_ANY, screen.data->root, XCB_MOD_MASK_ANY);
    for (const uint16_t kernelCode : kernelCodes_) {
      if (kernelCode > highestKernelCode) continue;
      const auto key = static_cast<xcb_keycode_t>(kernelCode + xKeyCodeOffset);
      for (const uint16_t locks : map.lockCombinations()) {
        requests.push_back(xcb_grab_key_checked(connection_.get(), 0, screen.data->root,
                                                static_cast<uint16_t>(modifiers | locks), key,
                                                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
      }
    }
  }
  ShortcutGrab result;
  if (requests.empty()) result = {ShortcutGrab::Result::failed, ShortcutService::noSuchKey};
  for (const xcb_void_cookie_t request : requests) {
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection_.get(), request));
    if (!error) continue;
    const bool taken = error->error_code == XCB_ACCESS;
    result = {taken ? ShortcutGrab::Result::taken : ShortcutGrab::Result::failed,
              taken ? 0 : error->error_code};
  }
  return result;
}

void XShortcut::listen() {
  nameThisThread("Tobrin.Shortcut");
  std::array<pollfd, 2> waits = {
      {{stop_.fd(), POLLIN, 0}, {xcb_get_file_descriptor(connection_.get()), POLLIN, 0}}};
  for (;;) {
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
      take(*event);
    }
    if (xcb_connection_has_error(connection_.get()) != 0) return;
    if (retried([&] { return poll(waits.data(), waits.size(), -1); }) < 0) return;
    if (waits[0].revents != 0) return;
  }
}

void XShortcut::take(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS: {
      const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
      const auto released = releasedAt_.find(press.detail);
      if (released == releasedAt_.end() || released->second != press.time) pressed_();
      break;
    }
    case XCB_KEY_RELEASE: {
      const auto& release = reinterpret_cast<const xcb_key_release_event_t&>(event);
      releasedAt_[release.detail] = release.time;
      break;
    }
    case XCB_MAPPING_NOTIFY: {
      const auto& notice = reinterpret_cast<const xcb_mapping_notify_event_t&>(event);
      if (notice.request == XCB_MAPPING_POINTER) break;
      // The modifiers may now have other bits.
      [[maybe_unused]] const ShortcutGrab again = grabAll();
      break;
    }
    default:
      break;
  }
}

}  // namespace tobrin
