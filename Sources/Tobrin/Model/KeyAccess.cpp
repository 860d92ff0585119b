#include "Model/KeyAccess.h"

#include <utility>

#include "Base/Log.h"

namespace tobrin {

KeyAccess::KeyAccess(Services services)
    : services_(std::move(services)),
      watch_(
          services_.monitor, services_.main, [this] { return services_.workspace.isUpdated(); },
          [this] { services_.onChange(); }) {}

void KeyAccess::look() {
  lookForWide();
  watch_.look();
}

void KeyAccess::lookForWide() {
  offersNarrower_ = !services_.keepsWide() && services_.workspace.canNarrowKeyAccess();
  services_.onChange();
}

bool KeyAccess::canGiveBack() const {
  return state().listening && services_.monitor.canGiveBackPermission();
}

std::string KeyAccess::problem() const {
  const std::string reason = state().needsRelaunch ? services_.monitor.problem() : "";
  return problem_.empty() && !reason.empty() ? "No keys come: " + reason : problem_;
}

void KeyAccess::allow() {
  services_.workspace.openKeyAccessSettings(settled("Access to keys can't be set up: "));
}

void KeyAccess::giveBack() {
  services_.workspace.giveBackKeyAccess(settled("Access to keys can't be taken back: "));
}

void KeyAccess::narrow() {
  services_.workspace.narrowKeyAccess(settled("Access to keys can't be changed: "));
}

Workspace::OnEnd KeyAccess::settled(const char* failure) {
  return [this, failure, alive = std::weak_ptr(alive_)](const std::string& problem) {
    if (alive.expired()) return;
    problem_ = problem.empty() ? "" : failure + problem;
    if (!problem.empty()) logLine(problem_);
    look();
  };
}

}  // namespace tobrin
