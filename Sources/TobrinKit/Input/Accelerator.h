/// Key combinations as desktops write them in their settings, and whether one of them is a given
/// shortcut. Texts come from outside: what does not parse is no combination. Thread: any.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Input/Hotkey.h"

namespace tobrin {

/// What the current keyboard layout calls a key.
struct KeyNaming {
  std::string symbol;  ///< the X11 name of its plain symbol ("k", "Escape", "comma"); may be empty
  std::string label;   ///< the character, UTF-8 (","); may be empty
};

struct Accelerator {
  Modifiers modifiers;
  std::string key;  ///< in lower case, by X11 name or as a character

  bool operator==(const Accelerator&) const = default;

  /// "<Control><Alt>k", "<Super>Page_Up", "XF86AudioPlay".
  static std::optional<Accelerator> fromGtk(std::string_view text);

  /// "Ctrl+Alt+K", "Meta+PgUp", "Ctrl++".
  static std::optional<Accelerator> fromQt(std::string_view text);

  /// Whether this is `hotkey`, whose key the layout calls `naming`.
  [[nodiscard]] bool matches(const Hotkey& hotkey, const KeyNaming& naming) const;
};

/// All combinations in a listing of settings whose values hold quoted texts, one setting a line:
/// "org.gnome.shell.keybindings toggle-overview ['<Super>s']".
std::vector<Accelerator> acceleratorsInGsettings(std::string_view listing);

/// All active combinations in KDE's file of global shortcuts:
/// "Window Close=Alt+F4,Alt+F4,Close Window", alternatives separated by "\t". Names that begin with
/// `own`, by which the desktop knows shortcuts of ours, are left out.
std::vector<Accelerator> acceleratorsInKGlobalShortcuts(std::string_view file,
                                                        std::string_view own);

}  // namespace tobrin
