/// The session's notices and actions on a Linux desktop. Thread: main.
#pragma once

#include <QSocketNotifier>
#include <memory>

#include "Confinement/Launcher.h"
#include "Desktop/SleepWatch.h"
#include "Engine/DesktopServices.h"

namespace tobrin {

class DesktopWorkspace final : public Workspace {
 public:
  /// The programs that this may start, for the launcher; the new instance waits until this one has
  /// given up its place.
  static Launcher::Commands errands();

  /// `launcher`, made of `errands`, must outlive this.
  explicit DesktopWorkspace(const Launcher& launcher);

  void setOnWake(std::function<void()> onWake) override { onWake_ = std::move(onWake); }
  void setOnTerminate(std::function<void()> onTerminate) override;
  std::string openPacksFolder() override;
  void openKeyAccessSettings(std::function<void(const std::string&)> onEnd) override;
  std::string relaunch() override;
  void terminate() override;

 private:
  void hearSleep();
  void takeGrantReport();

  const Launcher& launcher_;
  std::function<void()> onWake_;
  std::function<void()> onTerminate_;
  SleepWatch sleep_;
  std::unique_ptr<QSocketNotifier> sleepNotifier_;
  // While the user is asked for access: what is said of it, and who waits for the end.
  FileDescriptor grantReport_;
  std::string grantText_;
  std::unique_ptr<QSocketNotifier> grantNotifier_;
  std::function<void(const std::string&)> onGrantEnd_;
};

}  // namespace tobrin
