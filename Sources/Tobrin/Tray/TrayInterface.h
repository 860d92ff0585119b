/// The tray item: its symbol follows the sound state, a left click opens the panel next to it, the
/// menu has the switch, the packs and Quit. Without a tray on the desktop the panel opens as an
/// ordinary window; a tray that appears later (at login, its host may be late) is taken.
/// Thread: main.
#pragma once

#include <QActionGroup>
#include <QElapsedTimer>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>
#include <memory>

#include "Application/UserInterface.h"
#include "Tray/Appearance.h"
#include "Tray/TrayHosts.h"

namespace tobrin {

class TrayInterface final : public QObject, public UserInterface {
 public:
  std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) override;
  void start(AppModel& model) override;
  void showPanel() override;
  void stop() override;

 private:
  void doWithoutHost();
  void openAsWindow();
  void makeTrayItem();
  void updateItem();
  void applyLook();
  void fillMenu();
  void togglePanel();
  Panel* panel();
  void panelClosed();
  void panelMayBeUnloaded();

  AppModel* model_ = nullptr;  // set by start
  std::unique_ptr<Appearance> appearance_;
  std::unique_ptr<TrayHosts> hosts_;
  std::unique_ptr<QMenu> menu_;
  std::unique_ptr<QActionGroup> packChoice_;  // one of its entries is checked
  std::unique_ptr<QSystemTrayIcon> item_;
  std::unique_ptr<Panel> panel_;  // from its first opening until it has been closed for a while
  QTimer patience_;               // with the tray's host
  QTimer unload_;
  QElapsedTimer sinceClosed_;  // invalid until it first closed
};

}  // namespace tobrin
