/// The session's notices and actions on a Linux desktop. Thread: main.
#pragma once

#include <QProcess>
#include <QSocketNotifier>
#include <filesystem>
#include <memory>

#include "Desktop/SleepWatch.h"
#include "Engine/DesktopServices.h"

namespace tobrin {

class DesktopWorkspace final : public Workspace {
 public:
  /// `program` is what a relaunch starts.
  explicit DesktopWorkspace(std::filesystem::path program);

  void setOnWake(std::function<void()> onWake) override { onWake_ = std::move(onWake); }
  void setOnTerminate(std::function<void()> onTerminate) override;
  std::string openFolder(const std::filesystem::path& folder) override;
  void openKeyAccessSettings(std::function<void(const std::string&)> onEnd) override;
  std::string relaunch() override;
  void terminate() override;

 private:
  void hearSleep();
  [[nodiscard]] std::string grantProblem(int status);

  std::filesystem::path program_;
  std::function<void()> onWake_;
  std::function<void()> onTerminate_;
  SleepWatch sleep_;
  std::unique_ptr<QSocketNotifier> sleepNotifier_;
  std::unique_ptr<QProcess> grant_;  // the newest one
};

}  // namespace tobrin
