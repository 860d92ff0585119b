#include "Base/SystemFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <system_error>
#include <vector>

namespace tobrin {

namespace fs = std::filesystem;

fs::path recordedHomeFolder() {
  passwd user{};
  passwd* found = nullptr;
  std::vector<char> strings(16384);
  getpwuid_r(getuid(), &user, strings.data(), strings.size(), &found);
  return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : fs::path();
}

fs::path thisProgram() {
  std::error_code unknown;
  return fs::read_symlink("/proc/self/exe", unknown);
}

bool isThisProgramReplaced() {
  return thisProgram().native().ends_with(" (deleted)");  // the kernel's words
}

}  // namespace tobrin
