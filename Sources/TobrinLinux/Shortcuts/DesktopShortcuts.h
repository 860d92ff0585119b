/// Global shortcuts in the way that this session offers: a grab in an X11 session, the desktop
/// portal in a Wayland one, and our own key events until the portal has agreed or where there is
/// neither. Thread: main.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Base/Environment.h"
#include "Base/Mutex.h"
#include "Desktop/SessionKind.h"
#include "Input/ChordRecognizer.h"
#include "Input/ShortcutService.h"
#include "Shortcuts/KeyNames.h"
#include "Shortcuts/PortalShortcut.h"
#include "Shortcuts/SystemShortcuts.h"
#include "X11/XShortcut.h"

namespace tobrin {

class DesktopShortcuts final : public ShortcutService {
 public:
  /// Keeps what the portal answered, so that the user is not asked at each start. `read` is
  /// called on the main thread, `write` on any.
  struct Memory {
    std::function<std::string()> read;
    std::function<void(const std::string&)> write;
  };

  explicit DesktopShortcuts(Memory memory, const Environment& environment = processEnvironment);
  ~DesktopShortcuts() override;

  [[nodiscard]] bool isReserved(const Hotkey& hotkey) override;
  ShortcutGrab grab(const Hotkey& hotkey, std::function<void()> pressed) override;
  void release() override;
  [[nodiscard]] std::optional<std::string> keyName(uint32_t keyCode) override;
  void setOnChanged(std::function<void()> changed) override;
  void observe(const KeyEvent& event) override { chords_.observe(event); }
  [[nodiscard]] ShortcutRoute route() const override;

 private:
  std::optional<ShortcutGrab> grabFromServer(const Hotkey& hotkey);
  void askPortal(const Hotkey& hotkey);
  void portalBoundChanged(bool bound);
  void press(ShortcutRoute route);
  void tellChange();

  // fixed after construction
  const Memory memory_;
  const SessionKind kind_;
  const std::string display_;  // of an X11 session; else empty

  // main
  KeyNames names_;
  std::unique_ptr<XShortcut> server_;
  std::unique_ptr<PortalShortcut> portal_;
  std::optional<Hotkey> askedOfPortal_;

  ChordRecognizer chords_;                // by its own rules
  std::atomic<bool> portalBound_{false};  // written by the portal's thread, read by the key thread

  Mutex mutex_;
  uint64_t pressedAt_ TOBRIN_GUARDED_BY(mutex_) = 0;  // ticks
  ShortcutRoute pressedBy_ TOBRIN_GUARDED_BY(mutex_) = ShortcutRoute::exclusive;
  std::function<void()> pressed_ TOBRIN_GUARDED_BY(mutex_);
  std::function<void()> changed_ TOBRIN_GUARDED_BY(mutex_);

  SystemShortcuts system_;  // main; the last, as its thread calls
};

}  // namespace tobrin
