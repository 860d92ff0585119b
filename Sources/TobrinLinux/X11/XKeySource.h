/// Reads the keyboards of an X11 session through the server's raw key events, which come in every
/// case: with the focus in any window, and while another program has grabbed the keyboard. Needs no
/// permission. On Xwayland it would get the keys meant for X11 windows only, so it is for X11
/// sessions. Thread: key.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "Base/Mutex.h"
#include "Evdev/HeldKeys.h"
#include "Evdev/MouseWish.h"
#include "Input/KeySource.h"
#include "System/WakeEvent.h"
#include "X11/XClock.h"
#include "X11/XConnection.h"

namespace tobrin {

class XKeySource final : public KeySource {
 public:
  /// An empty `display` means the environment's.
  explicit XKeySource(std::string display = {});

  bool open() override;
  void run(const Sink& sink) override;
  void close() override;
  void interrupt() override;
  void hearMouse(MouseHearing wish) override { mouse_.set(wish); }
  [[nodiscard]] bool canHearMouse() const override { return true; }
  [[nodiscard]] bool hasPermission() const override { return true; }
  bool requestPermission() override { return true; }
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override;

 private:
  bool fail(const std::string& reason);
  [[nodiscard]] bool hasRawEvents() const;
  [[nodiscard]] bool selectEvents() const;
  void learnKeyboards();
  void takeAll(const Sink& sink);
  void take(const xcb_generic_event_t& event, const Sink& sink);
  void takeKey(const xcb_generic_event_t& event, HeldKeys::Change change, const Sink& sink);
  void takeButton(const xcb_generic_event_t& event, HeldKeys::Change change, const Sink& sink);
  void takeKeyboardsChanged(const xcb_generic_event_t& event, const Sink& sink);

  // fixed after construction
  const std::string display_;

  WakeEvent wake_;   // any thread
  MouseWish mouse_;  // any thread

  // key thread
  XConnection connection_;
  uint8_t inputExtension_ = 0;
  XClock clock_{false};
  std::map<uint16_t, HeldKeys> keyboards_;  // and mice, by the server's id of the physical device

  mutable Mutex mutex_;
  std::string problem_ TOBRIN_GUARDED_BY(mutex_);
};

}  // namespace tobrin
