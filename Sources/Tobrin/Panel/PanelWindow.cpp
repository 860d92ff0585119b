#include "Panel/PanelWindow.h"

#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QScreen>
#include <mutex>

#include "Base/Log.h"
#include "Panel/AppIconProvider.h"
#include "Panel/DesktopFrames.h"
#include "Panel/InputFocus.h"
#include "Panel/Placing/BesideAnchor.h"
#include "Panel/SymbolPixmap.h"
#include "Panel/SymbolProvider.h"

namespace tobrin {

using namespace std::chrono_literals;

namespace {

constexpr int unlimited = (1 << 24) - 1;  // of a side; the toolkit's own limit

/// Window managers have drawn their frame by then.
constexpr auto framedAfter = 150ms;

/// One small panel: drawing it in software takes a third of the memory of a GL context. It can be
/// chosen once a process; this library stays loaded when the panel is let go.
void drawInSoftware() {
  static std::once_flag chosen;
  std::call_once(chosen, [] { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); });
}

/// There no window can place or raise itself (see `WindowPlacer`), and the program cannot learn
/// which part of the screen is covered.
bool isOnWayland() {
  return QGuiApplication::platformName().startsWith("wayland");
}

/// Many Wayland desktops leave the frame to the program. The toolkit draws one by way of the
/// graphics drivers only, which this program does without.
bool drawsOwnFrame() {
  static const bool draws = isOnWayland() && !desktopDrawsFrames();
  return draws;
}

/// Nobody says there on which screen a window will appear.
QRect roomOnAnyScreen() {
  constexpr int bars = 64;  // desktop bars may cover that much of it
  QList<QRect> rooms;
  for (const QScreen* screen : QGuiApplication::screens())
    rooms.append(screen->availableGeometry());
  return lowestOf(rooms).marginsRemoved({0, 0, 0, bars});
}

/// For title bars and lists of windows on X11; on Wayland they find it by the program's name.
QIcon windowIcon() {
  QIcon icon;
  for (const int pixels : {16, 24, 32, 48, 64, 128})
    icon.addPixmap(drawnPixmap(":/Panel/app.tobrin.Tobrin.svg", pixels));
  return icon;
}

void layOut(QQuickItem& item) {
  item.ensurePolished();
  for (QQuickItem* child : item.childItems())
    layOut(*child);
}

/// Brings the panel to the height it will have: a window that grows once it is shown may grow
/// beyond the screen.
void settle(QQuickItem& panel) {
  constexpr int passes = 3;  // each layout learns of the heights within it in the pass after
  panel.setWidth(panel.implicitWidth());
  for (int i = 0; i < passes; ++i)
    layOut(panel);
}

}  // namespace

PanelWindow::PanelWindow(AppModel& model, std::function<void()> onClosed)
    : model_(std::make_unique<PanelModel>(model)), onClosed_(std::move(onClosed)) {
  drawInSoftware();
  placer_ = makeWindowPlacer();  // may clear up in KWin, which takes a moment
  view_ = std::make_unique<QQuickView>();
  view_->engine()->addImageProvider("symbol", new SymbolProvider);  // the engine owns it
  view_->engine()->addImageProvider("app", new AppIconProvider);
  view_->setTitle("Tobrin");
  if (!isOnWayland()) view_->setIcon(windowIcon());
  view_->setResizeMode(QQuickView::SizeRootObjectToView);
  view_->setInitialProperties({{"model", QVariant::fromValue(model_.get())}});
  view_->setSource(QUrl("qrc:/Tobrin/MenuView.qml"));
  for (const QQmlError& error : view_->errors())
    logLine(error.toString().toStdString());
  view_->installEventFilter(this);
  leaving_.setSingleShot(true);
  leaving_.callOnTimeout(this, &PanelWindow::leaveWithFocus);
  wirePackChooser();
  connect(model_->recording(), &RecordingModel::changed, this, &PanelWindow::followRecording);
  if (QQuickItem* root = view_->rootObject()) {
    // Texts wrap only once they know their width, and cards come and go.
    connect(root, &QQuickItem::implicitHeightChanged, this, &PanelWindow::followContent);
  }
}

PanelWindow::~PanelWindow() {
  view_.reset();
}

bool PanelWindow::isOpen() const {
  return view_->isVisible();
}

void PanelWindow::open(const QPoint* anchor) {
  model_->menuOpened();
  // A panel that opens comes to the front.
  if (isOpen() && !view_->isActive() && isOnWayland()) hideToReopen();
  closesWithFocus_ = anchor != nullptr && !isRecording();
  anchor_ = closesWithFocus_ ? *anchor : QPoint();
  leaving_.stop();
  focusLoss_.opened();
  takeForm();
  tallest_ = unlimited;
  fitToScreen();
  if (closesWithFocus_ && placer_ != nullptr) {
    placer_->placeNext();
    tallest_ = fitted_.height();  // nothing moves it again, should it grow below a bar
  }
  view_->setWindowStates(view_->windowStates() & ~Qt::WindowMinimized);
  view_->show();
  QTimer::singleShot(framedAfter, this, &PanelWindow::windowIsFramed);
  view_->raise();
  view_->requestActivate();
}

/// That of a pop-up or of an ordinary window.
void PanelWindow::takeForm() {
  view_->setFlags(closesWithFocus_  ? Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                  : drawsOwnFrame() ? Qt::Window | Qt::FramelessWindowHint
                                    : Qt::Window);
  if (QQuickItem* root = view_->rootObject()) {
    root->setProperty("framed", closesWithFocus_ || drawsOwnFrame());
    root->setProperty("titled", drawsOwnFrame());
    settle(*root);
  }
}

void PanelWindow::close() {
  // It lies behind what is typed into: who looks for it would lose minutes of typing.
  if (isRecording()) return open(nullptr);
  view_->hide();
}

void PanelWindow::setLook(const Look& look) {
  QQuickItem* root = view_->rootObject();
  if (root == nullptr) return;
  root->setProperty("dark", look.dark);
  root->setProperty("highContrast", look.highContrast);
  root->setProperty("reducedMotion", look.reducedMotion);
}

void PanelWindow::followContent() {
  // A window that the user has sized stays as it is.
  if (!view_->isVisible() || view_->size() != fitted_) return;
  fitToScreen();
  keepFrameOnScreen();
}

/// The part of the screen that it may take.
QRect PanelWindow::roomOnScreen() const {
  constexpr QMargins edges(screenEdge, screenEdge, screenEdge, screenEdge);
  if (isOnWayland()) return roomOnAnyScreen().marginsRemoved(edges);
  const QScreen* screen = closesWithFocus_ ? QGuiApplication::screenAt(anchor_) : view_->screen();
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? QRect() : screen->availableGeometry().marginsRemoved(edges);
}

void PanelWindow::fitToScreen() {
  const QRect room = roomOnScreen();
  if (!room.isValid() || view_->rootObject() == nullptr) return;
  const QQuickItem* root = view_->rootObject();
  const QSize wanted(qRound(root->implicitWidth()), qRound(root->implicitHeight()));
  const QMargins frame = view_->frameMargins();  // none before it is shown
  const QSize most = room.marginsRemoved(frame).size().boundedTo({unlimited, tallest_});
  fitted_ = wanted.boundedTo(most);
  takeSize();
  if (closesWithFocus_) view_->setPosition(besideAnchor(anchor_, view_->size(), room));
}

void PanelWindow::takeSize() {
  if (!isOnWayland() && view_->isVisible()) return view_->resize(fitted_);
  // Tiling desktops let a window float that has one size only when it appears; it must give that up
  // to take another.
  view_->setMinimumSize({});
  view_->setMaximumSize(fitted_);
  view_->resize(fitted_);
  view_->setMinimumSize(fitted_);
}

void PanelWindow::windowIsFramed() {
  if (isOnWayland()) return;
  view_->setMinimumSize({});
  view_->setMaximumSize({unlimited, unlimited});
  keepFrameOnScreen();
}

/// The frame that a window manager puts around the window may push an edge of it off the screen.
void PanelWindow::keepFrameOnScreen() {
  if (closesWithFocus_ || isOnWayland() || !view_->isVisible() || view_->screen() == nullptr)
    return;
  const QRect room = view_->screen()->availableGeometry();
  if (room.contains(view_->frameGeometry())) return;
  const QSize frame = view_->frameGeometry().size() - view_->size();
  const QSize bounded = view_->size().boundedTo(room.size() - frame);
  if (view_->size() == fitted_) fitted_ = bounded;
  view_->resize(bounded);
  const QPoint corner = view_->framePosition();
  const QSize outer = view_->size() + frame;
  view_->setFramePosition(
      {qBound(room.left(), corner.x(), qMax(room.left(), room.right() + 1 - outer.width())),
       qBound(room.top(), corner.y(), qMax(room.top(), room.bottom() + 1 - outer.height()))});
}

void PanelWindow::closeOnEscape(const QKeyEvent& key) {
  // The server goes on repeating a key that closed the panel, and would close the next one by it.
  if (key.key() != Qt::Key_Escape || key.isAutoRepeat()) return;
  const QQuickItem* root = view_->rootObject();
  if (root == nullptr || !root->property("showsPage").toBool()) view_->hide();
}

void PanelWindow::loseFocus() {
  constexpr auto switching = Qt::AltModifier | Qt::ControlModifier | Qt::MetaModifier;
  focusLoss_.focusLost(FocusLoss::Time::clock::now(),
                       QGuiApplication::queryKeyboardModifiers().testAnyFlags(switching));
  const auto patience = focusLoss_.patience();
  if (patience == patience.zero()) return leaveWithFocus();
  leaving_.start(patience);
}

void PanelWindow::leaveWithFocus() {
  if (model_->shelf()->isAsking()) return;  // a file chooser has the focus, or where a drag starts
  if (!view_->isVisible() || view_->isActive() || focusLoss_.wentWithPointer()) return;
  if (!keepsInputFocus(*view_)) return view_->hide();
  // During a grab we cannot see where the focus goes, so we ask until the grab ends.
  constexpr auto lookAgainAfter = 200ms;
  leaving_.start(lookAgainAfter);
}

void PanelWindow::wirePackChooser() {
  using Asking = PackShelfModel::Asking;
  PackShelfModel* const shelf = model_->shelf();
  connect(shelf, &PackShelfModel::choiceWanted, this, &PanelWindow::askForPacks);
  connect(&packChooser_, &PackChooser::failed, this, [this] { endAsking(Asking::byDropping); });
  connect(&packChooser_, &PackChooser::chosen, this, [this, shelf](const QList<QUrl>& files) {
    endAsking(Asking::no);
    shelf->add(files);
  });
}

void PanelWindow::askForPacks() {
  model_->shelf()->setAsking(PackShelfModel::Asking::byChooser);
  const bool hasNumber = QGuiApplication::platformName() == "xcb";
  packChooser_.ask(hasNumber ? "x11:" + QString::number(view_->winId(), 16) : QString());
}

void PanelWindow::endAsking(PackShelfModel::Asking next) {
  model_->shelf()->setAsking(next);
  if (view_->isVisible()) view_->requestActivate();
}

bool PanelWindow::isRecording() const {
  return model_->recording()->stage() != RecordingModel::Away;
}

/// While a keyboard is recorded the panel stays, wherever the focus goes.
void PanelWindow::followRecording() {
  if (!isRecording() || !closesWithFocus_) return;
  hideToReopen();
  open(nullptr);
}

void PanelWindow::hideToReopen() {
  isReopening_ = true;
  view_->hide();
  isReopening_ = false;
}

bool PanelWindow::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusOut:
      if (closesWithFocus_) loseFocus();
      break;
    case QEvent::Enter:
      focusLoss_.pointerEntered();
      break;
    case QEvent::Leave:
      focusLoss_.pointerLeft(FocusLoss::Time::clock::now());
      break;
    case QEvent::KeyPress:
      closeOnEscape(*static_cast<QKeyEvent*>(event));
      break;
    case QEvent::Hide:
      if (isReopening_) break;
      model_->recording()->panelClosed();
      model_->shelf()->panelClosed();
      model_->menuClosed();
      onClosed_();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace tobrin
