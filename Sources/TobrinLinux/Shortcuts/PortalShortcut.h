/// One key combination asked of the desktop portal, which is how Wayland desktops offer them. The
/// desktop asks its user, who may choose another combination or refuse. Thread: main.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "Input/Accelerator.h"
#include "Input/Hotkey.h"
#include "System/WakeEvent.h"

namespace tobrin {

class PortalShortcut final {
 public:
  /// The desktop, also in its own settings, knows the shortcut by this and the combination after
  /// it.
  static constexpr const char* id = "toggle-sounds";

  struct Listener {
    std::function<void()> pressed;
    /// Whether the desktop now reports presses: it says so by listing the shortcut, which it may
    /// do later or take back.
    std::function<void(bool bound)> boundChanged;
    /// What to pass to the next `PortalShortcut` as `known`, even in another run.
    std::function<void(const std::string& known)> remember;
  };

  /// The combination in the portal's words ("CTRL+ALT+LOGO+k"), with the key named as the layout
  /// does.
  static std::string trigger(const Hotkey& hotkey, const KeyNaming& naming);

  /// Starts asking; never waits. The listener is called on a thread of this object's, and never
  /// where no portal answers. A portal that comes or returns later is asked then, unless `known`
  /// says that the same was asked for in vain; an empty `known`: nothing was asked for before.
  PortalShortcut(std::string trigger, std::string known, Listener listener);

  /// When it returns, the last call of the listener has ended and the combination is given back.
  ~PortalShortcut();
  PortalShortcut(const PortalShortcut&) = delete;
  PortalShortcut& operator=(const PortalShortcut&) = delete;

 private:
  struct Dialogue;

  WakeEvent stop_;
  std::unique_ptr<Dialogue> dialogue_;
  std::thread thread_;
};

}  // namespace tobrin
