#include "Desktop/KWinScripts.h"

#include <filesystem>
#include <system_error>

#include "Base/SystemFolders.h"

namespace tobrin {

std::string kwinScript(const char* name) {
  std::error_code missing;
  const std::filesystem::path program = thisProgram().parent_path();
  for (const char* const folder : {TOBRIN_BUILT_KWIN_SCRIPTS, TOBRIN_INSTALLED_KWIN_SCRIPTS}) {
    const auto script = (program / folder / name).lexically_normal();
    if (std::filesystem::exists(script, missing)) return script;
  }
  return {};
}

}  // namespace tobrin
