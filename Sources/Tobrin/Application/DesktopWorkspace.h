/// The session's notices and actions on a Linux desktop. Thread: main.
#pragma once

#include <QSocketNotifier>
#include <memory>

#include "Confinement/Launcher.h"
#include "Desktop/LockWatch.h"
#include "Desktop/SleepWatch.h"
#include "Engine/DesktopServices.h"
#include "Evdev/KeyConsent.h"

namespace tobrin {

class DesktopWorkspace final : public Workspace {
 public:
  /// The programs that this may start, for the launcher; the new instance waits until this one has
  /// given up its place.
  static Launcher::Commands errands();

  /// `launcher`, made of `errands`, must outlive this.
  explicit DesktopWorkspace(const Launcher& launcher);

  void setOnWake(std::function<void()> onWake) override { onWake_ = std::move(onWake); }
  void setOnLock(std::function<void(bool)> onLock) override;
  void setOnTerminate(std::function<void()> onTerminate) override;
  std::string openPacksFolder() override;
  void openKeyAccessSettings(OnEnd onEnd) override;
  bool canNarrowKeyAccess() override;
  void narrowKeyAccess(OnEnd onEnd) override;
  void giveBackKeyAccess(OnEnd onEnd) override;
  [[nodiscard]] bool isUpdated() const override;
  std::string relaunch() override;
  void terminate() override;

 private:
  void hearSleep();
  void hearLock();
  void hearAnswer();
  void removeKeyRule(OnEnd onEnd);
  void takeRemovalReport();

  const Launcher& launcher_;
  std::function<void()> onWake_;
  std::function<void(bool)> onLock_;
  std::function<void()> onTerminate_;
  SleepWatch sleep_;
  std::unique_ptr<QSocketNotifier> sleepNotifier_;
  LockWatch lock_;
  std::unique_ptr<QSocketNotifier> lockNotifier_;
  // While an administrator is asked for access.
  std::unique_ptr<KeyConsent> consent_;
  std::unique_ptr<QSocketNotifier> consentNotifier_;
  // While the older rule is removed: what is said of it, and who waits for the end.
  FileDescriptor removalReport_;
  std::string removalText_;
  std::unique_ptr<QSocketNotifier> removalNotifier_;
  OnEnd onRemovalEnd_;
};

}  // namespace tobrin
