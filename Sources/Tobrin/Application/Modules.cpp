#include "Application/Modules.h"

#include <dlfcn.h>

#include <filesystem>

#include "Base/Log.h"
#include "Base/SystemFolders.h"

namespace tobrin {
namespace {

std::filesystem::path fileOf(const std::string& name) {
  std::error_code error;
  const auto program = thisProgram().parent_path();
  const std::string file = "libtobrin-" + name + ".so";
  auto built = program / "modules" / file;
  if (std::filesystem::exists(built, error)) return built;
  return program / TOBRIN_MODULES_FROM_BIN / file;
}

}  // namespace

void* Modules::symbol(const char* name, const char* symbol) {
  // Everything is resolved now: a missing function fails here, in words, and not later.
  void* library = dlopen(fileOf(name).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* address = library != nullptr ? dlsym(library, symbol) : nullptr;
  if (address == nullptr) {
    const char* reason = dlerror();  // NOLINT(concurrency-mt-unsafe): glibc keeps it per thread
    Log::line(std::string("can't load the ") + name + ": " + (reason != nullptr ? reason : "?"));
  }
  return address;
}

}  // namespace tobrin
