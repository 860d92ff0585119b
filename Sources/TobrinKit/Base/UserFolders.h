/// Where programs keep what is the user's, by the rules that desktops share (XDG base folders). The
/// folders need not exist. Each is empty where no variable names it and the system knows no home
/// folder. Thread: any.
#pragma once

#include <filesystem>

#include "Base/Environment.h"

namespace tobrin {

/// A variable's value where it is an absolute path, else empty: the rules say to ignore others.
std::filesystem::path folderNamedBy(const char* variable, const Environment& environment);

/// Settings: $XDG_CONFIG_HOME, else ~/.config.
std::filesystem::path configFolder(const Environment& environment = processEnvironment);

/// What the user made or installed: $XDG_DATA_HOME, else ~/.local/share.
std::filesystem::path dataFolder(const Environment& environment = processEnvironment);

/// What can be fetched or made again: $XDG_CACHE_HOME, else ~/.cache.
std::filesystem::path cacheFolder(const Environment& environment = processEnvironment);

}  // namespace tobrin
