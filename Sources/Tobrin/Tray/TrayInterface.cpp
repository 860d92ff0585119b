#include "Tray/TrayInterface.h"

#include <malloc.h>

#include <QApplication>
#include <QCursor>
#include <QLoggingCategory>
#include <cassert>

#include "Application/Application.h"
#include "Application/Modules.h"
#include "Application/Translation.h"
#include "Base/SystemFolders.h"
#include "Model/AppModel.h"
#include "Tray/TrayIcon.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

// How long a tray may take to appear.
constexpr std::chrono::milliseconds trayPatience = 700ms;
constexpr std::chrono::milliseconds trayPatienceAtLogin = 10s;
constexpr auto sameClick = 200ms;
constexpr auto unloadAfter = 60s;

/// On Wayland the toolkit loads the graphics drivers for its first window, even for ours, which is
/// drawn in software: they would double the memory of the whole program.
void doWithoutGraphicsDrivers() {
  constexpr const char* variable = "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION";
  if (qEnvironmentVariableIsSet(variable)) return;
  qputenv(variable, "none");
  // The library would warn that it has no driver of that name.
  QLoggingCategory::setFilterRules("qt.qpa.wayland.warning=false");
}

/// One short line, whatever a pack calls itself; "&" would underline the letter after it.
QString menuText(const std::string& name) {
  constexpr int longest = 40;
  QString line = QString::fromStdString(name).simplified();
  if (line.size() > longest) line = line.left(longest - 1) + u'…';
  return line.replace('&', "&&");
}

/// Started by the desktop at login, whose tray may be slow to come. The toolkit takes the session
/// manager's argument away.
bool isStartedAtLogin() {
  return QCoreApplication::arguments().contains(atLoginArgument) || qApp->isSessionRestored();
}

}  // namespace

std::unique_ptr<QCoreApplication> TrayInterface::makeApplication(int& argc, char** argv) {
  QGuiApplication::setDesktopFileName("app.tobrin.Tobrin");
  QGuiApplication::setQuitOnLastWindowClosed(false);
  doWithoutGraphicsDrivers();
  auto application = std::make_unique<QApplication>(argc, argv);
  QCoreApplication::setApplicationName("Tobrin");
  QGuiApplication::setLayoutDirection(QLocale().textDirection());
  return application;
}

void TrayInterface::start(AppModel& model) {
  assert(model_ == nullptr);  // once
  model_ = &model;
  appearance_ = std::make_unique<Appearance>();
  unload_.setSingleShot(true);
  connect(&unload_, &QTimer::timeout, this, &TrayInterface::panelMayBeUnloaded);
  connect(&model, &AppModel::statusChanged, this, &TrayInterface::updateItem);
  connect(appearance_.get(), &Appearance::changed, this, &TrayInterface::applyLook);
  hosts_ = std::make_unique<TrayHosts>();
  connect(hosts_.get(), &TrayHosts::appeared, this, &TrayInterface::makeTrayItem);
  // A tray that takes both kinds of item is given the time to say so.
  patience_.setSingleShot(true);
  connect(&patience_, &QTimer::timeout, this, &TrayInterface::doWithoutHost);
  const bool waitsLong = isStartedAtLogin() && !TrayHosts::hasEmbeddingTray();
  patience_.start(waitsLong ? trayPatienceAtLogin : trayPatience);
  // Who starts it for the first time sees at once that it runs, and where.
  if (model.isFirstStart()) QTimer::singleShot(0, this, [this] { openAsWindow(); });
}

void TrayInterface::stop() {
  hosts_.reset();
  patience_.stop();
  unload_.stop();
  panel_.reset();
  item_.reset();
  packChoice_.reset();
  menu_.reset();
}

void TrayInterface::doWithoutHost() {
  if (item_) return;
  if (TrayHosts::hasEmbeddingTray()) {
    makeTrayItem();
  } else if (!panel_) {
    openAsWindow();
  }
}

void TrayInterface::openAsWindow() {
  if (Panel* shown = panel()) shown->open(nullptr);
}

void TrayInterface::makeTrayItem() {
  if (item_) return;
  menu_ = std::make_unique<QMenu>();
  connect(menu_.get(), &QMenu::aboutToShow, this, [this] {
    model_->refreshPacks();
    fillMenu();
  });
  fillMenu();
  item_ = std::make_unique<QSystemTrayIcon>();
  item_->setContextMenu(menu_.get());
  connect(item_.get(), &QSystemTrayIcon::activated, this,
          [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger) togglePanel();
          });
  updateItem();
  item_->show();
}

void TrayInterface::applyLook() {
  if (panel_) panel_->setLook(appearance_->look());
}

void TrayInterface::updateItem() {
  if (!item_) return;
  item_->setIcon(trayIcon(model_->soundState() == SoundState::playing));
  item_->setToolTip("Tobrin\n" +
                    QString::fromStdString(
                        StatusTexts(model_->words(), translated).statusLine(model_->status())));
}

void TrayInterface::fillMenu() {
  menu_->clear();
  QAction* sounds = menu_->addAction(tr("Sounds"));
  sounds->setCheckable(true);
  sounds->setChecked(model_->settings().enabled);
  connect(sounds, &QAction::triggered, model_, &AppModel::toggleEnabled);
  packChoice_ = std::make_unique<QActionGroup>(nullptr);
  QMenu* packs = menu_->addMenu(tr("Sound"));
  for (const PackInfo& pack : model_->packs()) {
    QAction* choice = packChoice_->addAction(packs->addAction(menuText(pack.name)));
    choice->setCheckable(true);
    choice->setChecked(pack.id == model_->selectedPackID());
    connect(choice, &QAction::triggered, model_, [this, pack] { model_->select(pack); });
  }
  menu_->addSeparator();
  connect(menu_->addAction(tr("Open Tobrin")), &QAction::triggered, this,
          &TrayInterface::showPanel);
  connect(menu_->addAction(tr("Quit")), &QAction::triggered, &model_->desktop(),
          &DesktopActions::quit);
}

void TrayInterface::togglePanel() {
  if (panel_ && panel_->isOpen()) return panel_->close();
  // The click that takes the focus from the panel, and so closes it, may arrive here afterwards.
  const bool hasJustClosed = sinceClosed_.isValid() && sinceClosed_.elapsed() < sameClick.count();
  if (!hasJustClosed) showPanel();
}

void TrayInterface::showPanel() {
  Panel* shown = panel();
  if (shown == nullptr) return;
  if (!item_) return shown->open(nullptr);
  // Many trays do not say where the item is; the pointer that clicked it is next to it.
  const QRect place = item_->geometry();
  const QPoint anchor = place.isValid() ? place.center() : QCursor::pos();
  shown->open(&anchor);
}

Panel* TrayInterface::panel() {
  assert(model_ != nullptr);  // it has been started
  unload_.stop();
  if (panel_) return panel_.get();
  const PanelModule* const library = loadPanelModule();
  if (library == nullptr) {
    if (isThisProgramReplaced()) model_->desktop().relaunch();  // the panel is the new program's
    return nullptr;
  }
  panel_ = library->makePanel(*model_, [this] { panelClosed(); });
  panel_->setLook(appearance_->look());
  return panel_.get();
}

void TrayInterface::panelClosed() {
  sinceClosed_.start();
  unload_.start(unloadAfter);
}

void TrayInterface::panelMayBeUnloaded() {
  if (!panel_ || panel_->isOpen()) return;
  panel_.reset();
  malloc_trim(0);  // what the panel has freed goes back to the system
}

}  // namespace tobrin
