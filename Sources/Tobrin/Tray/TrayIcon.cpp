#include "Tray/TrayIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>

namespace tobrin {
namespace {

/// An icon that has a name for others and draws itself.
class TrayIconEngine final : public QIconEngine {
 public:
  explicit TrayIconEngine(QString name) : name_(std::move(name)) {}

  /// None where it is not installed (the program runs where it was built): a bar would show a
  /// question mark for the name and leave the pictures aside.
  QString iconName() override { return isInstalled() ? name_ : QString(); }

  QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
    QList<QSize> sizes;
    for (const int pixels : {16, 22, 24, 32, 48, 64})
      sizes.append({pixels, pixels});
    return sizes;
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, picture.rect(), mode, state);
    return picture;
  }

  void paint(QPainter* painter, const QRect& place, QIcon::Mode /*mode*/,
             QIcon::State /*state*/) override {
    QSvgRenderer(":/Tray/" + name_ + ".svg").render(painter, place);
  }

  [[nodiscard]] QIconEngine* clone() const override { return new TrayIconEngine(*this); }

 private:
  // The bar looks for it, not this program, whose toolkit may have no reader of such files.
  [[nodiscard]] bool isInstalled() const {
    return !QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                   "icons/hicolor/scalable/status/" + name_ + ".svg")
                .isEmpty();
  }

  QString name_;
};

}  // namespace

QIcon trayIcon(bool playing) {
  return QIcon(
      new TrayIconEngine(playing ? "app.tobrin.Tobrin-playing" : "app.tobrin.Tobrin-silent"));
}

}  // namespace tobrin
