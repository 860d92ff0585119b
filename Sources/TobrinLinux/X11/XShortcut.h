/// One key combination taken from an X server for this program alone, from construction to
/// destruction. Other programs do not see the key; two programs cannot have the same one.
/// Thread: main.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "Input/Hotkey.h"
#include "Input/ShortcutService.h"
#include "System/WakeEvent.h"
#include "X11/XConnection.h"

namespace tobrin {

class XShortcut final {
 public:
  /// Takes the combination; `outcome` says how that went. `pressed` runs on a thread of this
  /// object's, once for each press, however long the key is held.
  XShortcut(const std::string& display, const Hotkey& hotkey, std::function<void()> pressed);

  /// When it returns, the last `pressed` has ended and the combination is free.
  ~XShortcut();
  XShortcut(const XShortcut&) = delete;
  XShortcut& operator=(const XShortcut&) = delete;

  [[nodiscard]] const ShortcutGrab& outcome() const { return outcome_; }

 private:
  [[nodiscard]] ShortcutGrab grabAll();
  void listen();
  void take(const xcb_generic_event_t& event);

  // fixed once the thread runs
  const Hotkey hotkey_;
  const std::function<void()> pressed_;
  const std::vector<uint16_t> kernelCodes_;
  XConnection connection_;
  ShortcutGrab outcome_{ShortcutGrab::Result::failed, ShortcutService::unavailable};

  // Listening thread. A held key repeats as a release and a press of the same time.
  std::map<xcb_keycode_t, xcb_timestamp_t> releasedAt_;

  WakeEvent stop_;
  std::thread thread_;
};

}  // namespace tobrin
