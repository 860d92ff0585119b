#include "Application/Modules.h"

#include <QPluginLoader>
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

template <typename Module>
const Module* load(const std::string& name) {
  QPluginLoader loader(QString::fromStdString(fileOf(name).string()));
  // Everything is resolved now: a missing function fails here, in words, and not later.
  loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
  const auto* module = qobject_cast<Module*>(loader.instance());
  if (module == nullptr)
    logLine("can't load the " + name + ": " + loader.errorString().toStdString());
  return module;
}

}  // namespace

const TrayModule* loadTrayModule() {
  return load<TrayModule>("tray");
}

const PanelModule* loadPanelModule() {
  return load<PanelModule>("panel");
}

}  // namespace tobrin
