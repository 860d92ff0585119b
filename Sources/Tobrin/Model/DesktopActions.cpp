#include "Model/DesktopActions.h"

#include "Base/Log.h"

namespace tobrin {

void DesktopActions::readLaunchAtLogin() {
  const bool enabled = loginItem_.isEnabled();
  if (enabled == launchAtLogin_) return;
  launchAtLogin_ = enabled;
  emit launchAtLoginChanged();
}

void DesktopActions::setLaunchAtLogin(bool on) {
  const std::string problem = loginItem_.setEnabled(on);
  if (!problem.empty()) logLine("launch at login change failed: " + problem);
  loginItemProblem_ = problem.empty() ? "" : "This can't be changed: " + problem + ".";
  readLaunchAtLogin();
  emit launchAtLoginChanged();  // the switch may have to go back
}

void DesktopActions::openPacksFolder() {
  const std::string problem = workspace_.openPacksFolder();
  if (!problem.empty()) logLine("packs folder can't be shown: " + problem);
  packsFolderProblem_ = problem.empty() ? "" : "The packs folder can't be shown: " + problem + ".";
  emit packsFolderProblemChanged();
}

void DesktopActions::relaunch() {
  const std::string problem = workspace_.relaunch();
  if (!problem.empty()) {
    logLine("can't start again: " + problem);
    return;
  }
  workspace_.terminate();
}

}  // namespace tobrin
