/// One shortcut that works in any application: registers it with the desktop, runs an action when
/// it is pressed, and knows what became of it. The action runs on the service's thread.
/// Thread: main.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "Input/Hotkey.h"
#include "Input/ShortcutService.h"

namespace tobrin {

class GlobalHotkey final {
 public:
  struct Status {
    enum class Kind : uint8_t { off, active, taken, reservedBySystem, failed };

    Kind kind = Kind::off;
    Hotkey hotkey;      ///< of every kind but `off`
    int32_t error = 0;  ///< of `failed`

    bool operator==(const Status&) const = default;
  };

  /// `service` outlives this object and serves it alone. `action` runs on the service's thread,
  /// once a press, and must return quickly.
  GlobalHotkey(ShortcutService& service, std::function<void()> action);
  ~GlobalHotkey();
  GlobalHotkey(const GlobalHotkey&) = delete;
  GlobalHotkey& operator=(const GlobalHotkey&) = delete;

  /// Releases the current shortcut and registers `hotkey`, if one is given.
  Status registerHotkey(const std::optional<Hotkey>& hotkey);

  /// Status `off`. When it returns, the action's last call has ended.
  void unregister();

  [[nodiscard]] const Status& status() const { return status_; }

 private:
  ShortcutService& service_;
  const std::function<void()> action_;
  Status status_;
};

}  // namespace tobrin
