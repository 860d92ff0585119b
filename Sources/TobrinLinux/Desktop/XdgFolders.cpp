#include "Desktop/XdgFolders.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "Base/SystemFolders.h"

namespace tobrin {
namespace {

/// A variable's value, if it is an absolute path; the rules say to ignore relative ones.
std::filesystem::path absolutePath(const char* variable) {
  const char* value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): never set by us
  return value != nullptr && value[0] == '/' ? value : std::filesystem::path();
}

std::filesystem::path home() {
  if (auto home = absolutePath("HOME"); !home.empty()) return home;
  auto home = recordedHomeFolder();
  return home.empty() ? "/" : home;
}

}  // namespace

std::filesystem::path XdgFolders::config() {
  if (auto folder = absolutePath("XDG_CONFIG_HOME"); !folder.empty()) return folder;
  return home() / ".config";
}

std::filesystem::path XdgFolders::runtime() {
  if (auto folder = absolutePath("XDG_RUNTIME_DIR"); !folder.empty()) return folder;
  const std::filesystem::path folder = "/tmp/tobrin-" + std::to_string(getuid());
  constexpr mode_t ownerOnly = 0700;
  mkdir(folder.c_str(), ownerOnly);
  struct stat status {};
  const bool ours = lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                    status.st_uid == getuid() && (status.st_mode & 0077) == 0;
  return ours ? folder : std::filesystem::path();
}

}  // namespace tobrin
