/// What the user asks of the desktop: to start the program with the session, to show the folder of
/// the packs, to start the program again and to end it. Thread: main.
#pragma once

#include <QObject>
#include <string>

#include "Engine/DesktopServices.h"

namespace tobrin {

class DesktopActions final : public QObject {
  Q_OBJECT

 public:
  /// Both outlive this object.
  DesktopActions(LoginItem& loginItem, Workspace& workspace)
      : loginItem_(loginItem), workspace_(workspace) {}

  [[nodiscard]] bool launchAtLogin() const { return launchAtLogin_; }
  void setLaunchAtLogin(bool on);
  /// Asks the desktop; until then `launchAtLogin` is false.
  void readLaunchAtLogin();
  /// Why "Open at login" could not be changed, in a sentence; empty while nothing went wrong.
  [[nodiscard]] const std::string& loginItemProblem() const { return loginItemProblem_; }

  void openPacksFolder();
  /// Why it could not be shown, in a sentence; empty while nothing went wrong.
  [[nodiscard]] const std::string& packsFolderProblem() const { return packsFolderProblem_; }

  void relaunch();
  void quit() { workspace_.terminate(); }

 signals:
  void launchAtLoginChanged();  ///< launchAtLogin, loginItemProblem
  void packsFolderProblemChanged();

 private:
  LoginItem& loginItem_;
  Workspace& workspace_;
  bool launchAtLogin_ = false;
  std::string loginItemProblem_;
  std::string packsFolderProblem_;
};

}  // namespace tobrin
