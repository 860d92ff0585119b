#include "Base/UserFolders.h"

#include "Base/SystemFolders.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(const char* variable, const char* belowHome, const Environment& environment) {
  if (fs::path named = folderNamedBy(variable, environment); !named.empty()) return named;
  fs::path home = folderNamedBy("HOME", environment);
  if (home.empty()) home = recordedHomeFolder();
  return home.empty() ? fs::path() : home / belowHome;
}

}  // namespace

fs::path folderNamedBy(const char* variable, const Environment& environment) {
  fs::path value = environment(variable).value_or("");
  return value.is_absolute() ? value : fs::path();
}

fs::path configFolder(const Environment& environment) {
  return folderOf("XDG_CONFIG_HOME", ".config", environment);
}

fs::path dataFolder(const Environment& environment) {
  return folderOf("XDG_DATA_HOME", ".local/share", environment);
}

fs::path cacheFolder(const Environment& environment) {
  return folderOf("XDG_CACHE_HOME", ".cache", environment);
}

}  // namespace tobrin
