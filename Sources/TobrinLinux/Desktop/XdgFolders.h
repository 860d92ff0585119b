/// The user's folders after the XDG base directory rules. Thread: any.
#pragma once

#include <filesystem>

namespace tobrin {

struct XdgFolders {
  /// Settings: $XDG_CONFIG_HOME, else ~/.config.
  static std::filesystem::path config();
  /// Sockets and locks of this login: $XDG_RUNTIME_DIR, else a private folder below /tmp, made if
  /// missing; empty where that folder belongs to somebody else.
  static std::filesystem::path runtime();
};

}  // namespace tobrin
