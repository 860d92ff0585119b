#include "Panel/PanelWindow.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QScreen>

#include "Engine/Log.h"
#include "Panel/SymbolProvider.h"

namespace tobrin {
PanelWindow::PanelWindow(AppModel& model, std::function<void()> onClosed)
    : model_(std::make_unique<PanelModel>(model)), onClosed_(std::move(onClosed)) {
  // One small panel: drawing it in software takes a third of the memory of a GL context.
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  view_ = std::make_unique<QQuickView>();
  view_->engine()->addImageProvider("symbol", new SymbolProvider);  // the engine owns it
  view_->setTitle("Tobrin");
  view_->setResizeMode(QQuickView::SizeRootObjectToView);
  view_->setInitialProperties({{"model", QVariant::fromValue(model_.get())}});
  view_->setSource(QUrl("qrc:/Tobrin/MenuView.qml"));
  for (const QQmlError& error : view_->errors())
    Log::line(error.toString().toStdString());
  view_->installEventFilter(this);
}

PanelWindow::~PanelWindow() {
  view_.reset();
}

bool PanelWindow::isOpen() const {
  return view_->isVisible();
}

void PanelWindow::open(const QPoint* anchor) {
  model_->menuOpened();
  closesWithFocus_ = anchor != nullptr;
  view_->setFlags(anchor != nullptr ? Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                                    : Qt::Window);
  fitToScreen(anchor);
  view_->show();
  view_->raise();
  view_->requestActivate();
}

void PanelWindow::close() {
  view_->hide();
}

void PanelWindow::setDark(bool dark) {
  if (QQuickItem* root = view_->rootObject()) root->setProperty("dark", dark);
}

void PanelWindow::fitToScreen(const QPoint* anchor) {
  QScreen* screen = anchor != nullptr ? QGuiApplication::screenAt(*anchor) : nullptr;
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  if (screen == nullptr || view_->rootObject() == nullptr) return;
  constexpr int edge = 8;  // kept free at the screen's edges
  const QRect room = screen->availableGeometry().adjusted(edge, edge, -edge, -edge);
  const QQuickItem* root = view_->rootObject();
  const QSize wanted(qRound(root->implicitWidth()), qRound(root->implicitHeight()));
  view_->resize(wanted.boundedTo(room.size()));
  if (anchor == nullptr) return;
  const int left =
      qBound(room.left(), anchor->x() - view_->width() / 2, room.right() - view_->width() + 1);
  const bool below = anchor->y() < room.center().y();
  view_->setPosition(left, below ? qMax(room.top(), anchor->y() + edge)
                                 : qMin(room.bottom(), anchor->y() - edge) - view_->height());
}

bool PanelWindow::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusOut:
      if (closesWithFocus_) view_->hide();
      break;
    case QEvent::KeyPress:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) view_->hide();
      break;
    case QEvent::Hide:
      onClosed_();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace tobrin

extern "C" tobrin::Panel* tobrinMakePanel(tobrin::AppModel& model, std::function<void()> onClosed) {
  return new tobrin::PanelWindow(model, std::move(onClosed));
}
