/// Where everything is put together: the platform's adapters behind the model's seams, in the order
/// that start-up needs and that shutting down reverses. Thread: main.
#pragma once

#include <memory>
#include <optional>

#include "Application/DesktopWorkspace.h"
#include "Application/PacksWatch.h"
#include "Confinement/Launcher.h"
#include "Desktop/JsonSettingsStore.h"
#include "Desktop/XdgAutostart.h"
#include "Model/AppModel.h"
#include "Model/QtQueue.h"
#include "Threads/AsioQueue.h"

namespace tobrin {

class Assembly final {
 public:
  /// With `preview`, the model is one, and all it holds stays unused. `launcher` must outlive
  /// this.
  explicit Assembly(const Launcher& launcher,
                    std::optional<AppModel::Preview> preview = std::nullopt);

  [[nodiscard]] AppModel& model() { return *model_; }

 private:
  JsonSettingsStore settings_;
  XdgAutostart loginItem_;
  DesktopWorkspace workspace_;
  QtQueue main_;
  AsioQueue loader_;
  AsioQueue adding_;
  AsioQueue conductorQueue_;
  AsioQueue micQueue_;
  std::unique_ptr<AppModel> model_;
  std::unique_ptr<PacksWatch> packsWatch_;  // null in a preview
};

}  // namespace tobrin
