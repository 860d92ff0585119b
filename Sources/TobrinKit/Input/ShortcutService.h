/// The desktop's way to tell a program that a key combination was pressed in any application.
/// Implemented once for each desktop. Thread: main.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Base/KeyEvent.h"
#include "Input/Hotkey.h"

namespace tobrin {

/// What became of the request for a key combination.
struct ShortcutGrab {
  enum class Result : uint8_t {
    granted,
    taken,  ///< another program has it
    failed  ///< `error` says why
  };
  Result result = Result::granted;
  int32_t error = 0;  ///< of the platform; meaningful for people who look it up

  bool operator==(const ShortcutGrab&) const = default;
};

/// The way by which presses of a shortcut arrive.
enum class ShortcutRoute : uint8_t {
  exclusive,  ///< nobody else sees the combination
  desktop,    ///< the desktop tells; its settings may have made it another combination
  shared      ///< other programs see the combination too
};

class ShortcutService {
 public:
  /// The error where the desktop has no way at all to offer a shortcut.
  static constexpr int32_t unavailable = -9868;
  /// The error where no keyboard has the key.
  static constexpr int32_t noSuchKey = -9869;

  virtual ~ShortcutService() = default;

  /// Whether the desktop uses the combination itself, by its settings as they are now. False where
  /// they cannot be read.
  [[nodiscard]] virtual bool isReserved(const Hotkey& hotkey) = 0;

  /// `changed` is called on a thread of the service when the shortcut must be registered again:
  /// those settings came late and differ from what `isReserved` had to assume, or the route has
  /// changed. When this returns, the last call of an earlier `changed` has ended.
  virtual void setOnChanged(std::function<void()> changed) = 0;

  /// Asks for a call at each press of `hotkey`, once a press however long it is held. An earlier
  /// grab is given back, even if this one fails. `pressed` is called on a thread of the service and
  /// must return quickly.
  virtual ShortcutGrab grab(const Hotkey& hotkey, std::function<void()> pressed) = 0;

  /// Gives the combination back. When it returns, the last `pressed` has ended.
  virtual void release() = 0;

  /// The character the current keyboard layout gives the key, UTF-8; nothing where it gives none.
  [[nodiscard]] virtual std::optional<std::string> keyName(uint32_t keyCode) = 0;

  /// Must get every key event, late ones as well. A service falls back on them where the
  /// desktop offers nothing better; other programs then see the combination too. Thread: key.
  virtual void observe(const KeyEvent& event) = 0;

  /// Of the combination that is grabbed.
  [[nodiscard]] virtual ShortcutRoute route() const = 0;
};

}  // namespace tobrin
