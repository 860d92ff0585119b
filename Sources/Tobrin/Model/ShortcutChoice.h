/// The shortcut that the user has chosen: registers it, offers others, and says in words how it is
/// with it. Thread: main.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Input/GlobalHotkey.h"
#include "Input/PlatformWords.h"
#include "Input/ShortcutService.h"

namespace tobrin {

class ShortcutChoice final {
 public:
  /// The virtual key code of what the toolkit calls a key's scan code; nothing for keys that are
  /// not part of typing.
  using KeyOfScanCode = std::function<std::optional<uint16_t>(uint32_t scanCode)>;

  /// `service` and `words` outlive this object. `pressed` runs on the service's thread.
  ShortcutChoice(ShortcutService& service, const PlatformWords& words, KeyOfScanCode keyOfScanCode,
                 std::function<void()> pressed);

  /// Registers `shortcut` where it is wanted, and gives the one before back.
  void choose(bool isWanted, const Hotkey& shortcut);
  /// Registers it once more: the desktop may have changed its mind.
  void choose() { choose(isWanted_, shortcut_); }
  /// While the user presses keys to choose a new shortcut, the old one is released.
  void capture(bool captures);
  /// Gives it back. When this returns, the last `pressed` has ended.
  void unregister() { hotkey_.unregister(); }

  [[nodiscard]] GlobalHotkey::Status status() const { return hotkey_.status(); }
  /// How the shortcut reaches the program.
  [[nodiscard]] ShortcutRoute route() const;
  /// Why it does not work, in words; nothing while it does or is off.
  [[nodiscard]] std::optional<std::string> problem() const;
  /// A shortcut as the user reads it, in the current keyboard layout.
  [[nodiscard]] std::string display(const Hotkey& shortcut) const;
  /// The presets, and the user's choice where it is another.
  [[nodiscard]] std::vector<Hotkey> offered() const;
  /// The shortcut that these keys make. Nothing where they cannot be one: a modifier alone, or a
  /// key that would be missed in typing.
  [[nodiscard]] std::optional<Hotkey> of(uint32_t scanCode, Modifiers modifiers) const;

 private:
  ShortcutService& service_;
  const PlatformWords& words_;
  KeyOfScanCode keyOfScanCode_;
  GlobalHotkey hotkey_;
  Hotkey shortcut_;
  bool isWanted_ = false;
  bool isCapturing_ = false;
};

}  // namespace tobrin
